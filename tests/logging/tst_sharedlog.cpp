#include "testlog.h"

#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logstatus.h>
#include <VLBase/logging/logwriter.h>
#include <VLBase/logging/viewerclaim.h>
#include <VLBase/platform/namedmapping.h>
#include <VLBase/platform/namedmutex.h>

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTest>

#include <atomic>
#include <cstring>
#include <memory>
#include <thread>
#include <utility>

using vlbase::logging::LogOwner;
using vlbase::logging::LogStatus;
using vlbase::logging::peekLog;
using vlbase::logging::ViewerClaim;
using vlbase::platform::NamedMapping;
using vlbase::platform::NamedMutex;

namespace {

std::int32_t wordAt(const std::byte* base, std::size_t offset)
{
    std::int32_t value = 0;
    std::memcpy(&value, base + offset, 4);
    return value;
}

std::string systemName(const char* object, const QString& instance)
{
    return std::string(object) + "." + instance.toStdString();
}

} // namespace

class tst_SharedLog : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_instance = useOwnLog();
        QVERIFY(!m_instance.isEmpty());
    }
    void cleanup() { QCOMPARE(peekLog().presence, LogStatus::Presence::Absent); }

    void layout();
    void withoutOwner();
    void rolesAndCopies();
    void instances();
    void manyWriters();
    void foreignBuffer();
    void hangingHolder();
    void glance();

private:
    QString m_instance;
};

// Offsets as every program of the family has them.
void tst_SharedLog::layout()
{
    TestShared owner(0, 1000);
    QVERIFY(owner.IsOpen());
    TestShared writer(1);
    TestShared firstReader(2);
    TestShared secondReader(2);
    NamedMapping mapping;
    QCOMPARE(mapping.open(systemName("vlcoreShareBuffer1", m_instance)),
             NamedMapping::Opened::Done);
    const std::byte* const base = mapping.data();
    QVERIFY(mapping.size() >= 1080 + 2 * 1000);

    QCOMPARE(QByteArray(reinterpret_cast<const char*>(base), 20),
             QByteArray("Logger 2.0", 10).leftJustified(20, '\0'));
    QCOMPARE(wordAt(base, 20), 1000);
    QCOMPARE(wordAt(base, 24), 1080);
    QCOMPARE(wordAt(base, 28), 1); // writers
    QCOMPARE(wordAt(base, 32), 1); // owners
    QCOMPARE(wordAt(base, 36), 2); // readers
    QCOMPARE(wordAt(base, 48), 100000);
    QCOMPARE(int(base[52]), 0);
    QCOMPARE(int(base[1077]), 1);
    QCOMPARE(int(base[1078]) + int(base[1079]), 0);
    QCOMPARE(writer.GetUserCount(), 4);

    {
        const Lock lock(&writer);
        writer.Add("abc");
        writer.Add("");
    }
    owner.SetAcceptDataBlocks(false);
    QVERIFY(owner.SetFileName("/tmp/a.log"));
    QCOMPARE(owner.SetIndex(123456), 123456L);
    QCOMPARE(wordAt(base, 40), 5); // half 0, which is the second in memory
    QCOMPARE(wordAt(base, 44), 5);
    QCOMPARE(std::memcmp(base + 1080, "abc\0\0", 5), 0);
    QCOMPARE(std::memcmp(base + 1080 + 1000, "abc\0\0", 5), 0);
    QCOMPARE(wordAt(base, 48), 123456);
    QCOMPARE(std::memcmp(base + 53, "/tmp/a.log", 11), 0);
    QCOMPARE(int(base[1077]), 0);

    firstReader.ReleaseBuffer(); // no buffer chosen yet: half 0
    QCOMPARE(wordAt(base, 40), 0);
    QCOMPARE(wordAt(base, 44), 5);
    mapping.close();
}

void tst_SharedLog::withoutOwner()
{
    CLogWriter writer;
    TestShared shared(1);
    CLiveLogReader reader;
    QVERIFY(!writer.IsOpen() && !reader.IsOpen() && !reader.Open());
    QVERIFY(!shared.IsWriterAvailable());
    QCOMPARE(shared.GetUserCount(), -1);
    QCOMPARE(shared.GetFileName(), nullptr);
    QCOMPARE(shared.GetIndex(), -1L);
    QCOMPARE(shared.SetIndex(100007), -1L);
    QCOMPARE(shared.GetAndIncIndex(), -1L);
    QVERIFY(!shared.SetFileName("x") && !shared.GetAcceptDataBlocks());
    char* data = reinterpret_cast<char*>(this);
    long length = 7;
    reader.GetBuffer(&data, &length);
    reader.ReleaseBuffer();
    QVERIFY(data == nullptr && length == 0);
    writer.SendError(QString(), QString(), QString());
    shared.UnLockData();

    // A log that its owner left: numbers are used up, lines go nowhere.
    auto owner = std::make_unique<TestShared>(0, 500);
    QVERIFY(writer.Open() && !writer.Open());
    owner.reset();
    QVERIFY(!writer.IsWriterAvailable());
    writer.SendError(QString(), QString(), QString());
    TestShared next(0, 9000);
    QVERIFY(next.IsOpen());
    QCOMPARE(next.GetIndex(), 100001L);
    QVERIFY(next.lines(1).empty());
    QCOMPARE(peekLog().bufferSize, 500); // of the log that was there
}

void tst_SharedLog::rolesAndCopies()
{
    for (const auto& [role, size] : {std::pair(3, 500), {-1, 500}, {0, 0}, {0, -5}})
        QVERIFY(!TestShared(role, size).IsOpen());
    TestShared owner(0, 500);
    QVERIFY(!TestShared(0, 500).IsOpen());
    QCOMPARE(LogOwner(500).openResult(), LogOwner::OpenResult::Busy);
    {
        CLogWriter first;
        CLogWriter second(first);
        CLogWriter closed;
        QCOMPARE(owner.GetUserCount(), 3);
        closed = second; // gives its own user up
        QCOMPARE(owner.GetUserCount(), 2);
        CLogWriter(second).SendEvent(QString(), QString(), QString());
        QCOMPARE(owner.GetUserCount(), 2);
    }
    QCOMPARE(owner.GetUserCount(), 1);

    const std::string longest(511, 'n');
    QVERIFY(owner.SetFileName(longest.c_str()));
    QVERIFY(owner.GetFileName() == longest && peekLog().fileName == longest);
    QVERIFY(!owner.SetFileName((longest + "n").c_str()));
    QCOMPARE(std::string(owner.GetFileName()), std::string());
}

void tst_SharedLog::instances()
{
    for (const QString& bad : {QString(65, u'x'), QStringLiteral("a/b"), QStringLiteral("a.b"),
                               QStringLiteral("\u00e4")})
        QVERIFY(!setLogInstance(bad));
    {
        const TestShared owner(0, 500);
        QVERIFY(!setLogInstance(m_instance + QLatin1Char('x')));
        QCOMPARE(logInstance(), m_instance);
    }
    QVERIFY(setLogInstance(m_instance.leftJustified(64, u'_')));
    QVERIFY(TestShared(0, 500).IsOpen());
}

// What a leak would let grow.
void tst_SharedLog::manyWriters()
{
    TestShared owner(0, 500);
    const auto makeWriters = [](int count) {
        for (int i = 0; i < count; ++i) {
            CLogWriter writer;
            const CLogWriter copy(writer);
            writer.SendError(QString(), QString(), QString());
        }
    };
    makeWriters(10);
    const int before = countOfOpenResources();
    QVERIFY(before > 0);
    makeWriters(10000);
    QCOMPARE(countOfOpenResources(), before);
    QCOMPARE(owner.GetUserCount(), 1);
    QCOMPARE(owner.GetIndex(), 110010L);
}

void tst_SharedLog::foreignBuffer()
{
    constexpr int size = 1080 + 2 * 100;
    struct Damage
    {
        int offset;
        qint32 value;
        bool opens = false;
    };
    for (const Damage& damage : {Damage{48, 100000, true}, // intact
                                 {4, 0x30313233},          // signature
                                 {8, 0x41413032},          // which goes on
                                 {20, 0},                  // size of a half
                                 {20, -100},
                                 {20, 4000000},    // beyond the memory
                                 {20, 0x7FFFFFFF}, // twice it overflows
                                 {24, 1084},       // data offset
                                 {40, 101},        // fill beyond the half
                                 {44, -1},
                                 {44, 100, true}}) {
        NamedMutex mutex;
        NamedMapping mapping;
        QVERIFY(mutex.create(systemName("vlcoreMutex", m_instance)));
        QVERIFY(mapping.create(systemName("vlcoreShareBuffer1", m_instance), size));
        std::memcpy(mapping.data(), "Logger 2.0", 11);
        for (const auto& [at, word] :
             {std::pair(20, 100), {24, 1080}, {32, 1}, {damage.offset, damage.value}})
            std::memcpy(mapping.data() + at, &word, 4);
        const QByteArray before(reinterpret_cast<const char*>(mapping.data()), size);

        const LogStatus status = peekLog();
        QCOMPARE(status.presence == LogStatus::Presence::Present, damage.opens);
        QCOMPARE(status.reason.empty(), damage.opens);
        for (const int role : {1, damage.opens ? 1 : 0, damage.opens ? 1 : 2})
            QCOMPARE(TestShared(role, 100).IsOpen(), damage.opens);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(mapping.data()), size), before);
    }
}

// The mutex is taken by another thread, for which another process could stand.
void tst_SharedLog::hangingHolder()
{
    TestShared owner(0, 2000);
    CLogWriter writer;
    const QString text(1510, u'x');
    const auto send = [&writer](const QString& field) {
        QElapsedTimer time;
        time.start();
        writer.SendError(field, QString(), QString());
        return time.elapsed();
    };
    send(text);
    QCOMPARE(owner.lines(0).size(), 1u);
    writer.SetFullBufferWait(60'000); // for the room that nobody can make meanwhile
    const auto behindAHolder = [&owner](const auto& act) {
        QSemaphore held;
        QSemaphore enough;
        std::thread holder([&] {
            const Lock lock(&owner);
            held.release();
            enough.acquire();
        });
        held.acquire();
        act(enough);
        enough.release();
        holder.join();
    };

    behindAHolder([&](QSemaphore&) {
        const qint64 waited = send(QStringLiteral("after"));
        QVERIFY2(waited >= 1990 && waited < 3500, qPrintable(QString::number(waited)));
        // The time is lost once. Nothing is emptied again, and nobody waits for room either.
        QVERIFY(send(text) + send(QStringLiteral("tried")) < 500);
        writer.UnLockData(); // not ours, and still not
        QVERIFY(peekLog().lockHeld);
    });
    QVERIFY(!peekLog().lockHeld);
    for (const int half : {0, 1}) {
        const auto lines = owner.lines(half);
        QCOMPARE(lines.size(), 3u);
        QVERIFY(lines[0].substr(0, 7) == "100001\t" && lines[0].find("after") != std::string::npos);
        QVERIFY(lines[2].substr(0, 7) == "100003\t" && lines[2].find("tried") != std::string::npos);
    }
    // It was free once, so a holder is waited for again.
    writer.SetFullBufferWait(0);
    behindAHolder([&](QSemaphore& enough) {
        std::thread later([&enough] {
            QTest::qSleep(100);
            enough.release();
        });
        QVERIFY(send(QString()) >= 90);
        later.join();
    });
}

void tst_SharedLog::glance()
{
    QCOMPARE(peekLog().presence, LogStatus::Presence::Absent);
    LogOwner owner(500, 4000);
    QCOMPARE(owner.openResult(), LogOwner::OpenResult::Created);
    CLogWriter writer;
    CLiveLogReader reader;
    writer.SendEvent(QStringLiteral("1"), QString(), QString());
    owner.drain();
    writer.SendEvent(QStringLiteral("2"), QString(), QString());
    ViewerClaim claim;
    ViewerClaim second;
    QVERIFY(!peekLog().viewerAlive && claim.take() && claim.take() && !second.take());
    const LogStatus status = peekLog();
    QCOMPARE(status.presence, LogStatus::Presence::Present);
    QCOMPARE(status.bufferSize, 500);
    QVERIFY(status.owners == 1 && status.writers == 1 && status.readers == 1);
    QCOMPARE(status.fill[0], 2 * status.fill[1]);
    QCOMPARE(status.stagedBytes, static_cast<std::uint64_t>(status.fill[1]));
    QCOMPARE(status.reserveBytes, 4000u);
    QCOMPARE(status.linesNumbered, 2u);
    QCOMPARE(status.nextIndex, 100002);
    QVERIFY(status.ownerAlive && status.viewerAlive && !status.lockHeld);
    QVERIFY(status.acceptsDataBlocks && status.hasReserve);
    claim = ViewerClaim();
    QVERIFY(!peekLog().viewerAlive && second.take());
}

QTEST_GUILESS_MAIN(tst_SharedLog)
#include "tst_sharedlog.moc"

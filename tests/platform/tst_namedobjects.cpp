#include <VLBase/platform/namedclaim.h>
#include <VLBase/platform/namedmapping.h>
#include <VLBase/platform/namedmutex.h>
#include <VLBase/platform/openinglock.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

using namespace vlbase::platform;
using namespace std::chrono_literals;

/// The system's named objects within one process; two objects of one name conflict just as those
/// of two processes do. What takes processes is tested with the log.
class tst_NamedObjects : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        static int count = 0;
        m_name = QStringLiteral("vltest-%1-%2")
                     .arg(QCoreApplication::applicationPid())
                     .arg(++count)
                     .toStdString();
    }
    void cleanup() { QVERIFY2(!QFile::exists(path()), "something was left behind"); }

    void mapping();
    void leftOver();
    void notOurs_data();
    void notOurs();
    void mutex();
    void threadDiesHolding();
    void mutexOutlivesItsObject();
    void foreignMutex();
    void openingLock();
    void claim();

private:
    QString path() const
    {
        return QStringLiteral("/dev/shm/%1.%2")
            .arg(QString::fromStdString(m_name))
            .arg(QFileInfo(QStringLiteral("/proc/self")).ownerId());
    }
    static bool hasSharedMemoryFolder()
    {
        // Under Wine the host's folder may be seen, which means nothing there.
        return QSysInfo::kernelType() == QLatin1String("linux");
    }

    std::string m_name;
};

void tst_NamedObjects::mapping()
{
    NamedMapping first;
    NamedMapping second;
    QCOMPARE(second.open(m_name), NamedMapping::Opened::Absent);
    QVERIFY(first.create(m_name, 5000));
    QVERIFY(!NamedMapping().create(m_name, 5000));
    QCOMPARE(second.open(m_name), NamedMapping::Opened::Done);
    QVERIFY(second.size() >= 5000 && second.data() != first.data());
    QCOMPARE(int(first.data()[4999]), 0);
    first.data()[4999] = std::byte(77);
    first.close();
    QCOMPARE(int(second.data()[4999]), 77);

    NamedMapping glance;
    QCOMPARE(glance.open(m_name, NamedMapping::Access::Glance), NamedMapping::Opened::Done);
    QCOMPARE(int(glance.data()[4999]), 77);
    glance.close();
    second = NamedMapping();
    QCOMPARE(first.open(m_name), NamedMapping::Opened::Absent);
}

// What a killed process left: no holder, but a name.
void tst_NamedObjects::leftOver()
{
    if (!hasSharedMemoryFolder())
        QSKIP("shared memory is no file here");
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, 'x'));
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    NamedMapping mapping;
    QCOMPARE(mapping.open(m_name, NamedMapping::Access::Glance), NamedMapping::Opened::Absent);
    QVERIFY(file.exists());
    QCOMPARE(mapping.open(m_name), NamedMapping::Opened::Absent);
    QVERIFY(!file.exists());
    QVERIFY(mapping.create(m_name, 10));
    QCOMPARE(int(mapping.data()[0]), 0);
    mapping.close();
}

void tst_NamedObjects::notOurs_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"link", "folder", "open to others", "empty and held"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_NamedObjects::notOurs()
{
    if (!hasSharedMemoryFolder())
        QSKIP("shared memory is no file here");
    QFETCH(QString, kind);
    QTemporaryDir folder;
    const QString target = folder.filePath(QStringLiteral("target"));
    const QString plain = kind == QLatin1String("link") ? target : path();
    if (kind == QLatin1String("folder")) {
        QVERIFY(QDir().mkdir(path()));
    } else {
        QFile file(plain);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("content");
        QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner;
        if (kind == QLatin1String("open to others"))
            permissions |= QFile::ReadOther;
        QVERIFY(file.setPermissions(permissions));
        if (plain == target)
            QVERIFY(QFile::link(target, path()));
    }
    NamedMapping holder;
    if (kind == QLatin1String("empty and held")) {
        QFile::remove(path());
        QVERIFY(holder.create(m_name, 100));
        QVERIFY(QFile::resize(path(), 0));
    }

    NamedMapping mapping;
    QCOMPARE(mapping.open(m_name), NamedMapping::Opened::Refused);
    QCOMPARE(mapping.open(m_name, NamedMapping::Access::Glance), NamedMapping::Opened::Refused);
    QVERIFY(!mapping.create(m_name, 10));
    QVERIFY(!NamedMutex().open(m_name));
    if (!holder.isOpen()) {
        QVERIFY(!NamedClaim().take(m_name));
        QVERIFY(!OpeningLock(m_name, 10ms).isHeld());
        QVERIFY(QFileInfo::exists(path()));
    }
    if (plain == target) {
        QFile file(target);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("content"));
    }
    holder.close();
    QFile::remove(path());
    QDir().rmdir(path());
}

void tst_NamedObjects::mutex()
{
    NamedMutex first;
    NamedMutex second;
    QVERIFY(!second.open(m_name));
    QCOMPARE(second.lock(1ms), LockResult::Failed);
    QVERIFY(!second.unlock());
    QVERIFY(first.create(m_name) && second.open(m_name));
    QCOMPARE(first.lock(0ms), LockResult::Owned);
    QCOMPARE(first.lock(0ms), LockResult::Owned);
    QVERIFY(NamedMutex::isHeld(m_name));
    std::thread([&] {
        QElapsedTimer time;
        time.start();
        QCOMPARE(second.lock(100ms), LockResult::TimedOut);
        QVERIFY(time.elapsed() >= 95 && time.elapsed() < 1000);
        QVERIFY(!second.unlock() && !first.unlock());
        QVERIFY(!first.isHeldByThisThread());
    }).join();
    QVERIFY(first.unlock() && NamedMutex::isHeld(m_name));
    QVERIFY(first.unlock() && !NamedMutex::isHeld(m_name));
    QVERIFY(!first.unlock());

    // Each step is read and then written: the mutex is what makes the sum right.
    std::atomic<int> counter{0};
    std::vector<std::thread> threads;
    for (NamedMutex* const mutex : {&first, &second, &first, &second}) {
        threads.emplace_back([mutex, &counter] {
            for (int i = 0; i < 5000; ++i) {
                mutex->lock(10s);
                counter.store(counter.load() + 1);
                mutex->unlock();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(counter.load(), 20000);
}

void tst_NamedObjects::threadDiesHolding()
{
    NamedMutex mutex;
    QVERIFY(mutex.create(m_name));
    std::thread([&mutex] { mutex.lock(1s); }).join();
    QCOMPARE(mutex.lock(1s), LockResult::OwnedAfterDeath);
    QVERIFY(mutex.unlock());
    QCOMPARE(mutex.lock(1s), LockResult::Owned);
    QVERIFY(mutex.unlock());
}

// The object goes while it is locked: by its own thread, which then has let go.
void tst_NamedObjects::mutexOutlivesItsObject()
{
    NamedMutex other;
    {
        NamedMutex mutex;
        QVERIFY(mutex.create(m_name) && other.open(m_name));
        mutex.lock(1s);
        mutex.lock(1s);
    }
    std::thread([&other] {
        QCOMPARE(other.lock(1s), LockResult::Owned);
        QVERIFY(other.unlock());
    }).join();
}

void tst_NamedObjects::foreignMutex()
{
    if (!hasSharedMemoryFolder())
        QSKIP("a mutex is no memory here");
    NamedMapping memory;
    QVERIFY(memory.create(m_name, 4096));
    std::memset(memory.data(), 0x5A, 4096);
    QVERIFY(!NamedMutex().open(m_name));
    QVERIFY(!NamedMutex().create(m_name));
    QVERIFY(!NamedMutex::isHeld(m_name));
    QCOMPARE(int(memory.data()[40]), 0x5A);
}

void tst_NamedObjects::openingLock()
{
    std::atomic<int> inside{0};
    std::atomic<int> turns{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < 200; ++turn) {
                const OpeningLock lock(m_name, 20s);
                if (lock.isHeld() && inside++ == 0)
                    ++turns;
                --inside;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(turns.load(), 800);

    const OpeningLock held(m_name);
    std::thread([this] {
        QElapsedTimer time;
        time.start();
        QVERIFY(!OpeningLock(m_name, 50ms).isHeld());
        QVERIFY(time.elapsed() >= 45 && time.elapsed() < 1000);
    }).join();
}

void tst_NamedObjects::claim()
{
    NamedClaim first;
    NamedClaim second;
    QVERIFY(!NamedClaim::isTaken(m_name));
    QVERIFY(first.take(m_name));
    QVERIFY(NamedClaim::isTaken(m_name) && !second.take(m_name) && !second.isHeld());
    std::thread([moved = std::move(first)]() mutable { QVERIFY(moved.isHeld()); }).join();
    QVERIFY(second.take(m_name));
    second.release();
    QVERIFY(!NamedClaim::isTaken(m_name));

    // Many want it at the same time: each round exactly one gets it.
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> winners{0};
        std::atomic<int> arrived{0};
        std::vector<NamedClaim> claims(4);
        std::vector<std::thread> threads;
        for (NamedClaim& each : claims) {
            threads.emplace_back([&] {
                ++arrived;
                while (arrived < 4)
                    std::this_thread::yield();
                winners += each.take(m_name) ? 1 : 0;
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(winners.load(), 1);
    }
}

QTEST_GUILESS_MAIN(tst_NamedObjects)
#include "tst_namedobjects.moc"

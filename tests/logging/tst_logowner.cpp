#include "testlog.h"

#include <VLBase/logging/internal/logstaging.h>
#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logwriter.h>

#include <QTest>

#include <memory>
#include <random>
#include <string>
#include <vector>

using vlbase::logging::LineLedger;
using vlbase::logging::LogImage;
using vlbase::logging::LogOwner;
using vlbase::logging::LogStaging;

namespace {

// All that is staged, marked as written.
std::vector<std::string> takeAll(LogOwner& owner)
{
    std::vector<std::string> lines;
    for (std::string_view pack = owner.pending(); !pack.empty(); pack = owner.pending()) {
        for (const std::string& line : linesOf(pack))
            lines.push_back(line);
        owner.markWritten(pack.size());
    }
    return lines;
}

const QString none;

} // namespace

class tst_LogOwner : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(!useOwnLog().isEmpty()); }
    void ringLikeAQueue();
    void moveOfTheDead();
    void damagedRing();
    void drain();
    void stagingFull();
    void viewersHalf();
    void handOver();
};

// Packs go in whole and come out in order, whatever their sizes.
void tst_LogOwner::ringLikeAQueue()
{
    std::mt19937 random(3);
    std::vector<char> memory(LogImage::sizeFor(50));
    LogImage image = LogImage::format(memory.data(), 50);
    LogStaging::Control control;
    std::vector<char> bytes(110);
    LogStaging ring(&control, bytes.data(), bytes.size());
    std::string in;
    std::string out;
    std::size_t inside = 0;
    int refused = 0;
    for (int step = 0; step < 100000; ++step) {
        if (random() % 2 == 0) {
            image.append(1, std::string(random() % 20, static_cast<char>('a' + step % 26)));
            const std::string half(image.half(1), static_cast<std::size_t>(image.fill(1)));
            if (random() % 2 == 0 && !half.empty()) {
                const bool taken = ring.take(image);
                QCOMPARE(image.fill(1), taken ? 0 : static_cast<int>(half.size()));
                QVERIFY(taken || inside > 0); // an empty ring has room for any half
                refused += taken ? 0 : 1;
                if (taken) {
                    in += half;
                    inside += half.size();
                }
            }
        } else {
            const std::string_view pack = ring.pending();
            QCOMPARE(pack.empty(), inside == 0);
            const std::size_t part = pack.empty() ? 0 : pack.find('\0') + 1;
            const std::size_t marked = random() % 3 == 0 ? part : pack.size();
            out += pack.substr(0, marked);
            ring.markWritten(marked);
            inside -= marked;
        }
        QCOMPARE(ring.bytes(), inside);
    }
    QVERIFY(refused > 100 && out.size() > 100000);
    QCOMPARE(out, in.substr(0, out.size()));
}

// An owner dies after its lines are staged and before they have left the half, and a writer goes
// on; or they have left it by the rule of the 2000 ms.
void tst_LogOwner::moveOfTheDead()
{
    for (const bool emptied : {false, true}) {
        std::vector<char> memory(LogImage::sizeFor(50));
        LogImage image = LogImage::format(memory.data(), 50);
        LogStaging::Control control;
        std::vector<char> bytes(100);
        LogStaging ring(&control, bytes.data(), bytes.size());
        image.append(1, "staged one");
        image.append(1, "staged two");
        const int fill = image.fill(1);
        QVERIFY(ring.take(image));
        control.moveEnd = control.taken.load();
        image.setFill(1, emptied ? 0 : fill);
        image.append(1, "later, and longer than both");
        ring.finishMove(image);
        ring.finishMove(image);
        QCOMPARE(linesOf({image.half(1), static_cast<std::size_t>(image.fill(1))}),
                 std::vector<std::string>{"later, and longer than both"});
        QCOMPARE(linesOf(ring.pending()), (std::vector<std::string>{"staged one", "staged two"}));
    }
}

void tst_LogOwner::damagedRing()
{
    std::mt19937_64 random(11);
    std::vector<char> bytes(100, 'x');
    for (int round = 0; round < 20000; ++round) {
        LogStaging::Control control;
        const auto wild = [&random]() -> std::uint64_t {
            const std::uint64_t bits = random() >> (random() % 64);
            return random() % 2 ? bits : ~bits;
        };
        control.taken = wild();
        control.written = wild();
        control.skipAt = wild();
        LogStaging ring(&control, bytes.data(), bytes.size());
        bytes[random() % 100] = static_cast<char>(random() % 2);
        if (random() % 2) // it may also be damaged later than at the start
            ring.discardIfDamaged();
        const std::string_view pack = ring.pending();
        QVERIFY(pack.empty() || (pack.data() >= bytes.data() && pack.size() <= 100 &&
                                 pack.data() + pack.size() <= bytes.data() + 100));
        ring.markWritten(pack.size());
    }
}

void tst_LogOwner::drain()
{
    LogOwner owner(2000, 0);
    QCOMPARE(owner.openResult(), LogOwner::OpenResult::Created);
    QCOMPARE(owner.stagingCapacity(), 4000u);
    QCOMPARE(owner.drain().bytes, 0);
    QCOMPARE(owner.nextIndexIfIdle(), std::optional<long>(100000));
    CLogWriter writer;
    writer.SendEvent(QStringLiteral("1"), none, none);
    writer.SendEvent(QStringLiteral("2"), none, none);
    QCOMPARE(owner.nextIndexIfIdle(), std::nullopt);
    const LogOwner::Drained drained = owner.drain();
    QVERIFY(drained.bytes > 0 && drained.bytes == drained.fillBefore);
    QVERIFY(!drained.timedOut && !drained.stagingFull && !drained.trimmed);
    QCOMPARE(owner.pending().size(), static_cast<std::size_t>(drained.bytes));
    QCOMPARE(owner.drain().bytes, 0);
    QCOMPARE(owner.nextIndexIfIdle(), std::nullopt);

    const std::vector<std::string> lines = linesOf(owner.pending());
    QCOMPARE(lines.size(), 2u);
    owner.markWritten(lines[0].size() + 1);
    QCOMPARE(takeAll(owner), std::vector<std::string>{lines[1]});
    QVERIFY(owner.pending().empty() && owner.stagedBytes() == 0);
    QCOMPARE(owner.nextIndexIfIdle(), std::optional<long>(100002));
}

void tst_LogOwner::stagingFull()
{
    LogOwner owner(1000, 0);
    CLogWriter writer;
    int sent = 0;
    LogOwner::Drained drained;
    while (!drained.stagingFull) {
        for (int i = 0; i < 3; ++i)
            writer.SendEvent(QString(100, u'x'), none, none);
        sent += 3;
        drained = owner.drain();
        QVERIFY(sent < 100);
    }
    QCOMPARE(drained.bytes, 0);
    const std::size_t staged = owner.stagedBytes();
    QVERIFY(staged > 1000 && staged <= 2000);
    std::vector<std::string> lines = takeAll(owner);
    QVERIFY(!owner.drain().stagingFull);
    for (const std::string& line : takeAll(owner))
        lines.push_back(line);
    QCOMPARE(static_cast<int>(lines.size()), sent);
}

// A full half makes each writer move all of it for each line.
void tst_LogOwner::viewersHalf()
{
    constexpr int size = 20000;
    LogOwner owner(size, 0);
    TestShared shared(1);
    CLogWriter writer;
    const auto fillOf = [&shared](int half) { return static_cast<int>(shared.pack(half).size()); };
    const auto sendAndDrain = [&](int lines) {
        for (int i = 0; i < lines; ++i)
            writer.SendEvent(QString(50, u'x'), none, none);
        const bool trimmed = owner.drain().trimmed;
        takeAll(owner);
        return trimmed;
    };
    // Nobody reads: there is always room for three quarters, and the newest stay.
    int trims = 0;
    for (int i = 0; i < 100; ++i) {
        trims += sendAndDrain(10) ? 1 : 0;
        QVERIFY(fillOf(0) <= size / 4);
    }
    QVERIFY(trims > 3);
    const std::string newest = shared.lines(0).back();
    QCOMPARE(newest.substr(0, 6), std::string("100999"));

    // A reader that reads in time loses nothing.
    CLiveLogReader reader;
    for (int i = 0; i < 20; ++i) {
        char* data = nullptr;
        long length = 0;
        reader.GetBuffer(&data, &length);
        reader.ReleaseBuffer();
        while (fillOf(0) < size * 5 / 8)
            QVERIFY(!sendAndDrain(10));
    }
    // One that stopped reading costs nobody anything: there is room for twice what came lately.
    while (!sendAndDrain(1))
        QVERIFY(fillOf(0) <= size / 4 * 3);
    QVERIFY(fillOf(0) > size / 4 && fillOf(0) <= size / 2);
    QVERIFY(sendAndDrain(100));
    QVERIFY(fillOf(0) <= size / 8);
}

void tst_LogOwner::handOver()
{
    auto owner = std::make_unique<LogOwner>(5000, 20000);
    CLogWriter writer;
    writer.SendEvent(QStringLiteral("written"), none, none);
    writer.SendEvent(QStringLiteral("staged"), none, none);
    owner->drain();
    const std::string first = linesOf(owner->pending()).front();
    owner->markWritten(first.size() + 1);
    writer.SendEvent(QStringLiteral("in the log"), none, none);
    owner.reset();
    writer.SendEvent(QStringLiteral("to nobody"), none, none);

    LogOwner next(777);
    QCOMPARE(next.openResult(), LogOwner::OpenResult::TookOver);
    QCOMPARE(next.bufferSize(), 5000);
    QCOMPARE(next.GetUserCount(), 2);
    writer.SendEvent(QStringLiteral("to the next"), none, none);
    next.drain();
    LineLedger ledger = next.makeLedger();
    ledger.resumeAfter(first);
    std::uint64_t lost = 0;
    std::vector<std::string> texts;
    for (const std::string& line : takeAll(next)) {
        const LineLedger::Judgement judgement = ledger.judge(line);
        QCOMPARE(judgement.verdict, LineLedger::Verdict::Accept);
        lost += judgement.lostBefore;
        texts.push_back(QByteArray::fromStdString(line).split('\t')[6].toStdString());
    }
    QCOMPARE(texts, (std::vector<std::string>{"staged", "in the log", "to the next"}));
    QCOMPARE(lost, 1u);
}

QTEST_GUILESS_MAIN(tst_LogOwner)
#include "tst_logowner.moc"

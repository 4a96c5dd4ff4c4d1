#include <VLBase/logging/internal/linehash.h>
#include <VLBase/logging/internal/logimage.h>
#include <VLBase/logging/internal/logreserve.h>
#include <VLBase/logging/lineledger.h>

#include <QTest>

#include <algorithm>
#include <deque>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

using vlbase::logging::LineLedger;
using vlbase::logging::LogImage;
using vlbase::logging::LogReserve;
using Verdict = LineLedger::Verdict;

namespace {

// The writers' side, in ordinary memory.
class TestLog
{
public:
    explicit TestLog(bool withReserve)
        : m_imageBytes(LogImage::sizeFor(100) / 8 + 1)
        , m_image(LogImage::format(m_imageBytes.data(), 100))
    {
        if (!withReserve)
            return;
        m_reserveBytes.resize(LogReserve::sizeFor(0) / 8 + 1);
        LogReserve::format(m_reserveBytes.data(), 0, m_image);
        m_reserve =
            std::make_unique<LogReserve>(m_reserveBytes.data(), m_reserveBytes.size() * 8, m_image);
    }

    const LogReserve* reserve() const { return m_reserve.get(); }
    long index() const { return m_image.index(); }
    std::uint64_t consumed() const { return m_consumed; }

    /// A line of a writer of this library.
    std::string line()
    {
        const LogImage::Number taken = take();
        const std::string text = textOf(taken.number);
        if (m_reserve)
            m_reserve->seal(*m_reserve->takePosition(taken.counter), text);
        return text;
    }
    /// A line of another maker's writer.
    std::string foreignLine() { return textOf(take().number); }
    std::string injected(const std::string& text)
    {
        if (m_reserve)
            m_reserve->noteInjected(vlbase::logging::lineHash(text));
        return text;
    }
    void hang() { m_reserve->noteHang(); }
    void setIndex(int index)
    {
        const std::uint64_t reached = m_reserve->reached();
        m_image.setIndex(index);
        m_reserve->jump(reached, index);
    }
    void lose(std::uint64_t count)
    {
        for (; count > 0; --count) {
            const LogImage::Number taken = take();
            if (m_reserve)
                m_reserve->takePosition(taken.counter);
        }
    }

private:
    LogImage::Number take()
    {
        ++m_consumed;
        return m_image.takeNumber();
    }
    std::string textOf(int number) const
    {
        return std::to_string(number) + "\tnumber " + std::to_string(m_consumed);
    }

    std::vector<std::uint64_t> m_imageBytes;
    std::vector<std::uint64_t> m_reserveBytes;
    LogImage m_image;
    std::unique_ptr<LogReserve> m_reserve;
    std::uint64_t m_consumed = 0;
};

} // namespace

class tst_LineLedger : public QObject
{
    Q_OBJECT

private slots:
    void bothKinds();
    void sealsOnly();
    void resume();
    void account();
    void indexSet();
};

#define ACCEPTED(judgement, lost)                                                                  \
    do {                                                                                           \
        const LineLedger::Judgement j = (judgement);                                               \
        QCOMPARE(j.verdict, Verdict::Accept);                                                      \
        QCOMPARE(j.lostBefore, std::uint64_t(lost));                                               \
    } while (false)

void tst_LineLedger::bothKinds()
{
    for (const bool seals : {true, false}) {
        TestLog log(seals);
        LineLedger ledger(log.reserve());
        ledger.startAtBeginning();
        QCOMPARE(ledger.lostUpTo(log.index()), 0u);
        const std::string first = log.line();
        ACCEPTED(ledger.judge(first), 0);
        QCOMPARE(ledger.judge(first).verdict, Verdict::Repeated);
        const std::string late = log.line();
        log.lose(2);
        ACCEPTED(ledger.judge(log.line()), 3);
        QCOMPARE(ledger.judge(late).verdict, Verdict::Repeated); // it was counted
        ACCEPTED(ledger.judge("no number"), 0);
        ACCEPTED(ledger.judge("999999\tnever given out"), 0);
        ACCEPTED(ledger.judge("100005 no tab"), 0);
        ACCEPTED(ledger.judge(log.foreignLine()), 0);
        log.lose(7);
        QCOMPARE(ledger.lostUpTo(log.index()), 7u);
        QCOMPARE(ledger.lostUpTo(log.index()), 0u);

        // Over the end of the period, where 100000 comes twice; then with each of the two missing.
        const auto loseUpTo = [&](long number) {
            std::uint64_t lost = 0;
            while (log.index() < number) {
                log.lose(static_cast<std::uint64_t>(std::min(number - log.index(), 700000L)));
                lost += ledger.lostUpTo(log.index());
            }
            return lost;
        };
        const auto remaining = static_cast<std::uint64_t>(999998 - log.index());
        QCOMPARE(loseUpTo(999998), remaining);
        for (const char* start : {"999998\t", "100000\t", "100000\t", "100001\t"}) {
            const std::string line = log.line();
            QCOMPARE(line.substr(0, 7), std::string(start));
            ACCEPTED(ledger.judge(line), 0);
        }
        for (const int missing : {0, 1}) {
            loseUpTo(999998);
            ACCEPTED(ledger.judge(log.line()), 0);
            const std::string twice[2] = {log.line(), log.line()};
            const std::uint64_t before = ledger.judge(twice[1 - missing]).lostBefore;
            QCOMPARE(before + ledger.judge(log.line()).lostBefore, 1u);
        }
    }
}

void tst_LineLedger::sealsOnly()
{
    TestLog log(true);
    LineLedger ledger(log.reserve());
    ledger.startAtBeginning();
    const std::string first = log.line();
    std::string torn = log.line();
    torn.back() ^= 1;
    const std::string third = log.line();
    ACCEPTED(ledger.judge(first), 0);
    QCOMPARE(ledger.judge(torn).verdict, Verdict::Torn);
    ACCEPTED(ledger.judge(third), 1);
    QCOMPARE(ledger.judge("777777\tfrom nowhere").verdict, Verdict::Repeated);

    // Copies that a viewer put in: each is written, none counts.
    log.injected(first);
    log.injected(first);
    ACCEPTED(ledger.judge(first), 0);
    ACCEPTED(ledger.judge(first), 0);
    QCOMPARE(ledger.judge(first).verdict, Verdict::Repeated);
    ACCEPTED(ledger.judge(log.injected("777777\tfrom elsewhere")), 0);
    ACCEPTED(ledger.judge(log.line()), 0);

    // A holder that hung may wake up and leave a line's rear part behind.
    ACCEPTED(ledger.judge("no number"), 0);
    log.hang();
    QCOMPARE(ledger.judge("no number").verdict, Verdict::Torn);
    log.injected("as it is");
    ACCEPTED(ledger.judge("as it is"), 0);

    // More than a whole period goes by unseen.
    log.lose(2000000);
    ACCEPTED(ledger.judge(log.line()), 2000000);
    const std::string overtaken = log.line();
    log.lose(899999);
    const std::string sameNumber = log.line();
    QCOMPARE(sameNumber.substr(0, 7), overtaken.substr(0, 7));
    ACCEPTED(ledger.judge(overtaken), 0); // its seal is gone, its number is right
    ACCEPTED(ledger.judge(sameNumber), 899999);
    log.lose(1000000);
    QCOMPARE(ledger.lostUpTo(log.index()), 1000000u);
}

void tst_LineLedger::resume()
{
    TestLog log(true);
    log.lose(899999); // to 999998
    std::vector<std::string> lines;
    for (int i = 0; i < 5; ++i)
        lines.push_back(log.line());
    QCOMPARE(lines[0].substr(0, 7), std::string("100000\t"));
    QCOMPARE(lines[1].substr(0, 7), std::string("100000\t"));
    for (std::size_t last = 0; last < lines.size(); ++last) {
        LineLedger next(log.reserve());
        next.resumeAfter(lines[last]);
        for (std::size_t i = 0; i < lines.size(); ++i)
            QCOMPARE(next.judge(lines[i]).verdict, i <= last ? Verdict::Repeated : Verdict::Accept);
    }
    LineLedger unknown(log.reserve());
    unknown.resumeAfter("no number");
    ACCEPTED(unknown.judge(lines[3]), 0);
    ACCEPTED(unknown.judge(lines[4]), 0);
}

// Whatever happens to the lines on their way: accepted and lost together are what was consumed.
void tst_LineLedger::account()
{
    for (const bool seals : {true, false}) {
        std::mt19937 random(7);
        TestLog log(seals);
        LineLedger ledger(log.reserve());
        ledger.startAtBeginning();
        std::uint64_t lost = 0;
        std::uint64_t injectedSeen = 0;
        std::multiset<std::string> accepted;
        std::deque<std::string> recent;
        const auto deliver = [&](const std::string& line) {
            const LineLedger::Judgement judgement = ledger.judge(line);
            lost += judgement.lostBefore;
            if (judgement.verdict == Verdict::Accept)
                accepted.insert(line);
        };
        for (int step = 0; step < 300000; ++step) {
            switch (random() % 16) {
            case 0:
                log.lose(random() % 50);
                break;
            case 1: // torn, which only seals can tell
                if (seals) {
                    std::string line = log.line();
                    line[7 + random() % (line.size() - 7)] ^= 0x10;
                    deliver(line);
                    QVERIFY(accepted.count(line) == 0);
                }
                break;
            case 2: // too late
                recent.push_back(log.line());
                break;
            case 3:
                if (!recent.empty())
                    deliver(recent[random() % recent.size()]);
                break;
            case 4:
                if (seals && !accepted.empty()) {
                    deliver(log.injected(*accepted.rbegin() + "injected"));
                    ++injectedSeen;
                }
                break;
            default:
                recent.push_back(log.line());
                deliver(recent.back());
            }
            if (recent.size() > 20)
                recent.pop_front();
        }
        lost += ledger.lostUpTo(log.index());
        QCOMPARE(accepted.size() - injectedSeen + lost, log.consumed());
        QCOMPARE(std::set<std::string>(accepted.begin(), accepted.end()).size(), accepted.size());
        QVERIFY(lost > 100000 && accepted.size() > 100000);
    }
}

void tst_LineLedger::indexSet()
{
    TestLog log(true);
    LineLedger ledger(log.reserve());
    ledger.startAtBeginning();
    log.lose(10);
    QCOMPARE(ledger.lostUpTo(log.index()), std::uint64_t(10));
    for (const int index : {100005, 500000, 100000}) {
        log.lose(2);
        log.setIndex(index + 1);
        log.setIndex(index);
        QCOMPARE(ledger.judge(log.line()).lostBefore, std::uint64_t(2));
        log.lose(3);
        QCOMPARE(ledger.lostUpTo(log.index()), std::uint64_t(3));
    }
}

QTEST_GUILESS_MAIN(tst_LineLedger)
#include "tst_lineledger.moc"

#include "race.h"

#include <algorithm>
#include <fstream>
#include <list>
#include <string>
#include <vector>

namespace bench {

namespace {

constexpr std::chrono::seconds patience{60};

Report reportOf(const Tally& tally, const Receiver& receiver)
{
    Report report;
    report.received = tally.received();
    report.missing = tally.missing();
    report.bad = tally.bad();
    report.reportedLost = receiver.reportedLost();
    return report;
}

/// The processes of one run and the steps that they take together: attach, warm up, the timed
/// one, leave.
class Race
{
public:
    Race(Transport& transport, const RaceSetup& setup)
        : m_transport(transport)
        , m_setup(setup)
        , m_writers(static_cast<std::uint64_t>(setup.writers))
        , m_timed(setup.lines / m_writers * m_writers)
        , m_warmUp(setup.lines / 10 / m_writers * m_writers)
    {
    }

    std::optional<RaceResult> run();

private:
    void runReceiver(const Parent& parent) const;
    void runWriter(const Parent& parent, int number) const;
    bool attach();
    bool startBystander();
    bool awaitReceiver();
    bool awaitSenders();
    bool awaitStep() { return awaitReceiver() && awaitSenders(); }
    void startStep();
    bool leave();
    bool toFile() const { return !m_transport.file().empty(); }
    std::int64_t sendersCpuNs() const;
    RaceResult resultSince(std::int64_t start) const;
    void countFile(RaceResult& result) const;

    Transport& m_transport;
    const RaceSetup& m_setup;
    std::uint64_t m_writers;
    std::uint64_t m_timed;
    std::uint64_t m_warmUp;
    std::list<Process> m_receivers; // none or one
    std::list<Process> m_bystanders;
    std::list<Process> m_senders;
    Report m_receiverReport;
    std::vector<Report> m_senderReports;
};

void Race::runReceiver(const Parent& parent) const
{
    const auto receiver = m_transport.makeReceiver();
    Tally tally(m_setup.writers);
    parent.finishStep();
    for (const std::uint64_t lines : {m_warmUp, m_timed}) {
        receiver->receive(tally, lines);
        parent.finishStep(reportOf(tally, *receiver));
    }
}

void Race::runWriter(const Parent& parent, int number) const
{
    const auto sender = m_transport.makeSender();
    LineMaker lines(number);
    parent.finishStep();
    for (const std::uint64_t count : {m_warmUp, m_timed}) {
        sender->send(lines, count / m_writers);
        parent.finishStep();
    }
}

bool Race::startBystander()
{
    if (!m_setup.bystander)
        return true;
    m_bystanders.emplace_back(m_setup.bystander);
    Report ignored;
    if (!m_bystanders.front().awaitStep(ignored, patience))
        return false;
    m_bystanders.front().startStep();
    return !m_setup.bystanderStops || m_bystanders.front().awaitStop();
}

bool Race::awaitReceiver()
{
    for (Process& receiver : m_receivers) {
        if (!receiver.awaitStep(m_receiverReport, patience))
            return false;
    }
    return true;
}

bool Race::awaitSenders()
{
    m_senderReports.clear();
    for (Process& sender : m_senders) {
        if (!sender.awaitStep(m_senderReports.emplace_back(), patience))
            return false;
    }
    return true;
}

void Race::startStep()
{
    for (Process& receiver : m_receivers)
        receiver.startStep();
    for (Process& sender : m_senders)
        sender.startStep();
}

/// The writers go first, so that the receiver is there as long as anybody may need it.
bool Race::leave()
{
    bool good = true;
    const auto end = [&good](std::list<Process>& processes) {
        for (Process& process : processes) {
            process.startStep();
            good = process.awaitEnd() && good;
        }
    };
    end(m_senders);
    for (Process& bystander : m_bystanders)
        bystander.resume();
    end(m_bystanders);
    end(m_receivers);
    return good;
}

std::int64_t Race::sendersCpuNs() const
{
    std::int64_t sum = 0;
    for (const Report& report : m_senderReports)
        sum += report.cpuNs;
    return sum;
}

void Race::countFile(RaceResult& result) const
{
    std::ifstream file(m_transport.file(), std::ios::binary);
    Tally tally(m_setup.writers);
    for (std::string line; std::getline(file, line);)
        tally.take(line);
    result.received = tally.received();
    result.missing = tally.missing();
    result.bad = tally.bad();
}

bool Race::attach()
{
    m_transport.prepare();
    if (!toFile()) {
        m_receivers.emplace_back([this](const Parent& parent) { runReceiver(parent); });
        // Some transports exist only once their receiver is there.
        if (!awaitReceiver() || !startBystander())
            return false;
    }
    for (int number = 0; number < m_setup.writers; ++number)
        m_senders.emplace_back([this, number](const Parent& parent) { runWriter(parent, number); });
    return awaitSenders();
}

RaceResult Race::resultSince(std::int64_t start) const
{
    std::int64_t lastCall = start;
    for (const Report& report : m_senderReports)
        lastCall = std::max(lastCall, report.finishedNs);
    const std::int64_t lastLine = toFile() ? lastCall : m_receiverReport.finishedNs;

    RaceResult result;
    result.seconds = static_cast<double>(lastLine - start) * 1e-9;
    result.writerSeconds = static_cast<double>(lastCall - start) * 1e-9;
    result.timedLines = m_timed;
    result.lines = m_warmUp + m_timed;
    result.received = m_receiverReport.received;
    result.missing = m_receiverReport.missing;
    result.bad = m_receiverReport.bad;
    result.reportedLost = m_receiverReport.reportedLost;
    return result;
}

std::optional<RaceResult> Race::run()
{
    if (!attach())
        return {};
    startStep();
    if (!awaitStep())
        return {};
    const std::int64_t cpuBefore = sendersCpuNs();

    const std::int64_t start = monotonicNs();
    startStep();
    if (!awaitStep())
        return {};
    RaceResult result = resultSince(start);
    result.writerCpuSeconds = static_cast<double>(sendersCpuNs() - cpuBefore) * 1e-9;

    if (!leave())
        return {};
    if (toFile())
        countFile(result);
    return result;
}

} // namespace

std::optional<RaceResult> runRace(Transport& transport, const RaceSetup& setup)
{
    const auto result = Race(transport, setup).run();
    if (!result)
        transport.sweep();
    return result;
}

} // namespace bench

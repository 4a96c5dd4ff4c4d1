#include "sharedlog.h"

#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logline.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logwriter.h>
#include <VLBase/logging/viewerclaim.h>

#include <QLatin1String>
#include <QString>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace bench {

namespace {

using namespace std::chrono_literals;
using vlbase::logging::LineLedger;
using vlbase::logging::LogOwner;

// Longer than any run: a sender that gave up waiting would lose lines.
constexpr int longWaitMs = 30'000;

void joinLog(const std::string& uniqueName)
{
    if (!setLogInstance(QString::fromStdString(uniqueName)))
        throw std::runtime_error("the log's name was refused");
}

/// Puts ready lines into the log by the steps that any program of the family would take.
class ReadySender : public Sender, private CMMShared
{
public:
    ReadySender(FullBuffer whenFull, int halfBytes)
        : CMMShared(1, 0)
        , m_room(whenFull == FullBuffer::Wait ? halfBytes / 4 * 3 : halfBytes)
    {
        if (!IsOpen())
            throw std::runtime_error("no log to write to");
    }

    void send(LineMaker& lines, std::uint64_t count) override
    {
        for (; count > 0; --count, lines.next()) {
            waitForRoom();
            const Lock lock(this);
            char* index = lines.index();
            std::to_chars(index, index + 6, GetAndIncIndex());
            Add(lines.line().c_str());
        }
    }

private:
    void waitForRoom()
    {
        for (auto pause = 50us; fill() > m_room; pause = std::min(2 * pause, 200us))
            std::this_thread::sleep_for(pause);
    }

    long fill()
    {
        char* start = nullptr;
        long length = 0;
        GetBuffer(1, &start, &length);
        return length;
    }

    long m_room;
};

class EventSender : public Sender
{
public:
    explicit EventSender(FullBuffer whenFull)
        : m_writer(QStringLiteral("receiver"))
        , m_detail(QLatin1String(detail.data(), int{detail.size()}))
    {
        if (!m_writer.IsOpen())
            throw std::runtime_error("no log to write to");
        if (whenFull == FullBuffer::Wait)
            m_writer.SetFullBufferWait(longWaitMs);
        // The station's name is this machine's, so the first field makes up the length.
        const auto others = QStringLiteral("100000\t2026-03-01 12:00:00\tUTC: 0.000000\t").size() +
                            m_writer.GetStationName().size() + 1 + m_writer.GetModuleName().size() +
                            QStringLiteral("\tError\t\t").size() + m_detail.size() + 1 +
                            qsizetype{tailLength};
        if (others > qsizetype{lineLength})
            throw std::runtime_error("this machine's name is too long for the line");
        m_subject = QString(qsizetype{lineLength} - others, QLatin1Char('.'));
    }

    void send(LineMaker& lines, std::uint64_t count) override
    {
        for (; count > 0; --count, lines.next()) {
            const std::string_view tail = lines.tail();
            m_writer.SendError(m_subject, m_detail,
                               QString::fromLatin1(tail.data(), int(tail.size())));
        }
    }

private:
    CLogWriter m_writer;
    QString m_subject;
    QString m_detail;
};

/// The owner program's loop and its pauses, in one thread and with a tally in place of the file.
class OwnerReceiver : public Receiver
{
public:
    explicit OwnerReceiver(int halfBytes)
        : m_owner(halfBytes)
        , m_ledger(m_owner.makeLedger())
    {
        if (m_owner.openResult() != LogOwner::OpenResult::Created)
            throw std::runtime_error("the log could not be created");
        m_ledger.startAtBeginning();
    }

    void receive(Tally& tally, std::uint64_t count) override
    {
        m_due += count;
        while (tally.received() + m_lost < m_due) {
            const LogOwner::Drained drained = m_owner.drain();
            write(tally);
            if (drained.rest > 0us)
                rest(drained.rest);
        }
    }

    std::uint64_t reportedLost() const override { return m_lost; }

private:
    void write(Tally& tally)
    {
        for (auto lines = m_owner.pending(); !lines.empty(); lines = m_owner.pending()) {
            const std::size_t size = lines.size();
            while (!lines.empty()) {
                const std::string_view line = vlbase::logging::takeLine(lines);
                const LineLedger::Judgement judgement = m_ledger.judge(line);
                m_lost += judgement.lostBefore;
                if (judgement.verdict == LineLedger::Verdict::Accept)
                    tally.take(line);
            }
            m_owner.markWritten(size);
        }
    }

    void rest(std::chrono::microseconds pause)
    {
        if (const auto next = m_owner.nextIndexIfIdle())
            m_lost += m_ledger.lostUpTo(*next);
        std::this_thread::sleep_for(pause);
    }

    LogOwner m_owner;
    LineLedger m_ledger;
    std::uint64_t m_due = 0;
    std::uint64_t m_lost = 0;
};

class SharedLog : public Transport
{
public:
    SharedLog(const std::string& uniqueName, SharedLogLine line, FullBuffer whenFull, int halfBytes)
        : m_name(uniqueName)
        , m_line(line)
        , m_whenFull(whenFull)
        , m_halfBytes(halfBytes)
    {
    }

    std::unique_ptr<Sender> makeSender() override
    {
        joinLog(m_name);
        switch (m_line) {
        case SharedLogLine::Ready:
            return std::make_unique<ReadySender>(m_whenFull, m_halfBytes);
        case SharedLogLine::Sent:
            return std::make_unique<EventSender>(m_whenFull);
        }
        return nullptr;
    }

    std::unique_ptr<Receiver> makeReceiver() override
    {
        joinLog(m_name);
        return std::make_unique<OwnerReceiver>(m_halfBytes);
    }

    // An owner that opens a log without users removes it, and a viewer's claim likewise. In a
    // process of its own, because a process keeps to one log.
    void sweep() override
    {
        Process sweeper([this](const Parent&) {
            joinLog(m_name);
            const LogOwner owner(m_halfBytes);
            vlbase::logging::ViewerClaim().take();
        });
        sweeper.awaitEnd();
    }

private:
    std::string m_name;
    SharedLogLine m_line;
    FullBuffer m_whenFull;
    int m_halfBytes;
};

/// Attaches as the viewer that empties its half.
class Viewer
{
public:
    Viewer()
    {
        if (!m_reader.IsOpen() || !m_claim.take())
            throw std::runtime_error("no log to look at");
    }

    void drain()
    {
        char* start = nullptr;
        long length = 0;
        m_reader.GetBuffer(&start, &length);
        m_lines.assign(start, start + length);
        m_reader.ReleaseBuffer();
    }

private:
    CLiveLogReader m_reader;
    vlbase::logging::ViewerClaim m_claim;
    std::string m_lines;
};

} // namespace

std::unique_ptr<Transport> makeSharedLog(const std::string& uniqueName, SharedLogLine line,
                                         FullBuffer whenFull, int halfBytes)
{
    return std::make_unique<SharedLog>(uniqueName, line, whenFull, halfBytes);
}

Process::Body drainingViewer(const std::string& uniqueName, std::chrono::milliseconds interval)
{
    return [uniqueName, interval](const Parent& parent) {
        joinLog(uniqueName);
        Viewer viewer;
        viewer.drain();
        parent.finishStep();
        while (!parent.nextStepStarted()) {
            viewer.drain();
            std::this_thread::sleep_for(interval);
        }
    };
}

Process::Body stoppedViewer(const std::string& uniqueName)
{
    return [uniqueName](const Parent& parent) {
        joinLog(uniqueName);
        Viewer viewer;
        viewer.drain();
        parent.finishStep();
        std::raise(SIGSTOP);
    };
}

} // namespace bench

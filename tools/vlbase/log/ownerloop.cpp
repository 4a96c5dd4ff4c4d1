#include "ownerloop.h"

#include "tools/vlbase/bytecount.h"

#include <thread>
#include <utility>

namespace vlbase::tool::log {
namespace {

using namespace std::chrono_literals;

constexpr auto idleTime = 100ms;
constexpr auto retryTime = 250ms;
constexpr auto nameCheckTime = 1s;
constexpr std::size_t largestPiece = 1024 * 1024;

/// The beginning of `lines` that is not much longer than a piece and ends with a whole line.
std::string_view pieceOf(std::string_view lines)
{
    if (lines.size() <= largestPiece)
        return lines;
    const std::size_t end = lines.find('\0', largestPiece);
    return end == std::string_view::npos ? lines : lines.substr(0, end + 1);
}

} // namespace

OwnerLoop::OwnerLoop(logging::LogOwner& owner, FileSink& sink, LineIntake& intake, Tell tell)
    : m_owner(owner)
    , m_sink(sink)
    , m_intake(intake)
    , m_tell(std::move(tell))
{
}

bool OwnerLoop::run(const platform::StopSignal& stop)
{
    std::thread writer([this] { writeWhileRunning(); });
    while (!platform::StopSignal::requested()) {
        const auto rest = drain().rest;
        if (rest > 0us)
            stop.wait(rest);
    }
    drainTheRest();
    {
        const std::lock_guard lock(m_wakeMutex);
        m_isEnding = true;
    }
    m_wake.notify_one();
    writer.join();
    m_sink.close();
    return m_sink.isFlushed() && m_owner.stagedBytes() == 0;
}

logging::LogOwner::Drained OwnerLoop::drain()
{
    logging::LogOwner::Drained drained;
    {
        const std::lock_guard lock(m_ownerMutex);
        drained = m_owner.drain();
    }
    if (drained.timedOut)
        tellOne(QStringLiteral("a program held the log's lock for 2 seconds; the lines of that "
                               "time were dropped and are counted"));
    if (drained.bytes > 0) {
        {
            const std::lock_guard lock(m_wakeMutex);
            m_hasWork = true;
        }
        m_wake.notify_one();
    }
    return drained;
}

/// Writers that never rest must not keep the owner from ending, so the rounds are limited.
void OwnerLoop::drainTheRest()
{
    for (int round = 0; round < 3; ++round) {
        if (drain().bytes == 0)
            return;
    }
}

void OwnerLoop::writeWhileRunning()
{
    bool isEnding = false;
    while (!isEnding) {
        bool isQuiet = false;
        {
            std::unique_lock lock(m_wakeMutex);
            const auto time = m_isDiskBad ? retryTime : idleTime;
            isQuiet = !m_wake.wait_for(
                lock, time, [this] { return m_isEnding || (m_hasWork && !m_isDiskBad); });
            isEnding = m_isEnding;
            m_hasWork = false;
        }
        if (writeStaged() && (isQuiet || isEnding))
            settle();
        tellDisk();
    }
}

/// \return whether all that was staged is in the file.
bool OwnerLoop::writeStaged()
{
    const auto now = std::chrono::steady_clock::now();
    if (now - m_nameLookedAt > nameCheckTime) {
        m_nameLookedAt = now;
        m_sink.followName();
    }
    for (;;) {
        if (!m_sink.isFlushed() && !m_sink.flush())
            return false;
        m_owner.markWritten(std::exchange(m_pieceBytes, 0));
        if (m_owner.pending().empty() && m_text.empty())
            return true;
        if (!writeNextPiece())
            return false;
    }
}

bool OwnerLoop::writeNextPiece()
{
    const std::string_view piece = pieceOf(m_owner.pending());
    m_intake.take(piece, m_text);
    m_pieceBytes = piece.size();
    const bool isWritten = m_sink.write(m_text);
    m_text.clear();
    return isWritten;
}

/// Tells what is missing at the end, where no later line would show it.
void OwnerLoop::settle()
{
    std::optional<long> next;
    {
        const std::lock_guard lock(m_ownerMutex);
        next = m_owner.nextIndexIfIdle();
    }
    if (!next)
        return;
    m_intake.settle(*next, m_text);
    writeStaged();
}

void OwnerLoop::tellDisk()
{
    const bool isBad = !m_sink.isFlushed();
    if (isBad && !m_isDiskBad)
        tellOne(QStringLiteral("cannot write the file: %1. Lines are kept in memory, up to %2, "
                               "until it can be written again.")
                    .arg(m_sink.errorText(),
                         byteCountText(static_cast<std::int64_t>(m_owner.stagingCapacity()))));
    if (!isBad && m_isDiskBad)
        tellOne(QStringLiteral("the file is being written again; all lines kept are in it"));
    m_isDiskBad = isBad;

    const bool isRotationBad = !m_sink.rotationErrorText().isEmpty();
    if (isRotationBad && !m_isRotationBad)
        tellOne(QStringLiteral("cannot rotate the file: %1. It grows on until it can be renamed.")
                    .arg(m_sink.rotationErrorText()));
    m_isRotationBad = isRotationBad;
}

void OwnerLoop::tellOne(const QString& text)
{
    const std::lock_guard lock(m_tellMutex);
    m_tell(text);
}

} // namespace vlbase::tool::log

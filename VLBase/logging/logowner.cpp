#include "logowner.h"

#include <VLBase/logging/internal/drainpace.h>
#include <VLBase/logging/internal/logattachment.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace vlbase::logging {

namespace {

// A drain is never split, and an empty ring of this size always has room for one.
int stagingSize(int bufferSize, int reserveBytes)
{
    const std::int64_t least = 2 * static_cast<std::int64_t>(bufferSize);
    const std::int64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp<std::int64_t>(reserveBytes, std::min(least, most), most));
}

} // namespace

namespace {

/// Stands in for the shared staging ring where there is none.
class PrivateStaging
{
public:
    explicit PrivateStaging(std::size_t bytes)
        : m_bytes(bytes)
        , m_staging(&m_control, m_bytes.data(), bytes)
    {
    }

    LogStaging& staging() { return m_staging; }

private:
    LogStaging::Control m_control;
    std::vector<char> m_bytes;
    LogStaging m_staging;
};

} // namespace

struct LogOwner::State
{
    explicit State(int bufferSize)
        : pace(bufferSize)
    {
    }

    std::unique_ptr<PrivateStaging> privateStaging;
    LogStaging* staging = nullptr;
    int inflow = 0; // most bytes of a drain lately
    DrainPace pace;
};

LogOwner::LogOwner(int bufferSize, int reserveBytes)
    : CMMShared(static_cast<int>(Role::Owner), bufferSize, stagingSize(bufferSize, reserveBytes))
{
    useStaging();
}

LogOwner::~LogOwner() = default;

OpenResult LogOwner::open()
{
    if (Open())
        useStaging();
    return openResult();
}

OpenResult LogOwner::openResult() const
{
    return lastOpening();
}

void LogOwner::useStaging()
{
    if (!IsOpen())
        return;
    m_state = std::make_unique<State>(bufferSize());
    LogAttachment& log = *attachment();
    const auto least = 2 * static_cast<std::size_t>(bufferSize());
    LogStaging* const shared = log.sharedStaging();
    if (shared && shared->size() >= least) {
        log.lock();
        shared->discardIfDamaged();
        shared->finishMove(log.image());
        log.unlock();
        m_state->staging = shared;
        return;
    }
    m_state->privateStaging = std::make_unique<PrivateStaging>(least);
    m_state->staging = &m_state->privateStaging->staging();
}

int LogOwner::bufferSize() const
{
    return IsOpen() ? attachment()->image().bufferSize() : 0;
}

// A writer that finds a half full moves all of it for its line, so the viewers' half keeps room
// for what may come until the next drain: twice the most that came lately.
bool LogOwner::trimViewersHalf(int inflow)
{
    LogImage& image = attachment()->image();
    const int size = image.bufferSize();
    const int most = size / 4 * 3;
    m_state->inflow = std::max(inflow, m_state->inflow - m_state->inflow / 16);
    const bool isRead = image.users(Role::Reader) > 0;
    const int room =
        isRead ? std::clamp(2 * std::min(m_state->inflow, most), size / 4, most) : most;
    if (image.fill(0) <= size - room)
        return false;
    image.keepNewest(0, (size - room) / 2);
    return true;
}

LogOwner::Drained LogOwner::drain()
{
    if (!IsOpen())
        return {};
    Drained drained = drainOnce();
    drained.rest = m_state->pace.restAfter(drained);
    return drained;
}

LogOwner::Drained LogOwner::drainOnce()
{
    Drained drained;
    LogAttachment& log = *attachment();
    LogImage& image = log.image();
    if (image.fill(1) == 0 && image.fill(0) <= image.bufferSize() / 4 * 3)
        return drained; // an idle log is left alone

    drained.timedOut = log.lock() == platform::LockResult::TimedOut;
    drained.fillBefore = image.fill(1);
    if (drained.fillBefore > 0) {
        bool taken = m_state->staging->take(image);
        if (!taken && m_state->staging->pending().empty()) { // not full, so spoilt by somebody
            m_state->staging->discardIfDamaged();
            taken = m_state->staging->take(image);
        }
        drained.stagingFull = !taken;
        drained.bytes = drained.stagingFull ? 0 : drained.fillBefore;
    }
    drained.trimmed = trimViewersHalf(drained.fillBefore);
    log.unlock();
    return drained;
}

std::string_view LogOwner::pending() const
{
    return m_state ? m_state->staging->pending() : std::string_view();
}

void LogOwner::markWritten(std::size_t bytes)
{
    if (m_state)
        m_state->staging->markWritten(bytes);
}

std::size_t LogOwner::stagedBytes() const
{
    return m_state ? m_state->staging->bytes() : 0;
}

std::size_t LogOwner::stagingCapacity() const
{
    return m_state ? m_state->staging->size() : 0;
}

bool LogOwner::isStagingShared() const
{
    return m_state && !m_state->privateStaging;
}

LineLedger LogOwner::makeLedger() const
{
    return LineLedger(IsOpen() ? attachment()->reserve() : nullptr);
}

std::optional<long> LogOwner::nextIndexIfIdle()
{
    if (!IsOpen())
        return std::nullopt;
    const Lock lock(this);
    const LogImage& image = attachment()->image();
    if (image.fill(1) > 0 || stagedBytes() > 0)
        return std::nullopt;
    return image.index();
}

} // namespace vlbase::logging

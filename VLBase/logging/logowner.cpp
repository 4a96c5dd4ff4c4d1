#include "logowner.h"

#include <VLBase/logging/logregistration.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace vlbase::logging {

namespace {

constexpr int ownerRole = 0;

// How long a viewer may leave its half alone before it counts as gone.
constexpr std::chrono::milliseconds viewerPatience(50);

// A drain is never split, and an empty ring of this size always has room for one.
int stagingSize(int bufferSize, int reserveBytes)
{
    const std::int64_t least = 2 * static_cast<std::int64_t>(bufferSize);
    const std::int64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp<std::int64_t>(reserveBytes, std::min(least, most), most));
}

} // namespace

/// Stands in for the shared staging ring where there is none.
class LogOwner::PrivateStaging
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

LogOwner::LogOwner(int bufferSize, int reserveBytes)
    : CMMShared(ownerRole, bufferSize, stagingSize(bufferSize, reserveBytes))
{
    useStaging();
}

LogOwner::~LogOwner() = default;

LogOwner::OpenResult LogOwner::open()
{
    if (Open())
        useStaging();
    return openResult();
}

LogOwner::OpenResult LogOwner::openResult() const
{
    switch (openOutcome()) {
    case OpenOutcome::Created:
        return OpenResult::Created;
    case OpenOutcome::Joined:
        return OpenResult::TookOver;
    case OpenOutcome::Busy:
        return OpenResult::Busy;
    case OpenOutcome::Absent:
    case OpenOutcome::Failed:
        break;
    }
    return OpenResult::Failed;
}

void LogOwner::useStaging()
{
    if (!IsOpen())
        return;
    LogAttachment& attachment = registration()->attachment();
    const auto least = 2 * static_cast<std::size_t>(bufferSize());
    LogStaging* const shared = attachment.sharedStaging();
    if (shared && shared->size() >= least) {
        attachment.lock();
        shared->discardIfDamaged();
        shared->finishMove(attachment.image());
        attachment.unlock();
        m_staging = shared;
        return;
    }
    m_privateStaging = std::make_unique<PrivateStaging>(least);
    m_staging = &m_privateStaging->staging();
}

int LogOwner::bufferSize() const
{
    return IsOpen() ? registration()->attachment().image().bufferSize() : 0;
}

// A writer that finds a half full moves all of it for its line, so the viewers' half keeps room
// for what may come until the next drain: twice the most that came lately. A viewer that reads
// loses lines only when they would otherwise run over at the next drain.
bool LogOwner::trimViewersHalf(int inflow)
{
    LogImage& image = registration()->attachment().image();
    const int fill = image.fill(0);
    const int size = image.bufferSize();
    const bool isRead = isViewersHalfRead(inflow);
    m_inflow = std::max(inflow, m_inflow - m_inflow / 16);
    const int room = isRead                    ? std::min(m_inflow, size / 4)
                     : m_inflow < size / 8 * 3 ? 2 * m_inflow
                                               : size / 4 * 3;
    const bool trim = fill > size - room || (!isRead && fill > size / 4 * 3);
    if (trim)
        image.keepNewest(0, std::min(size / 2, (size - room) / 2));
    m_viewersFill = image.fill(0);
    return trim;
}

// Each line goes into both halves, so what came since the last drain tells how full the viewers'
// half is unless somebody has read it.
bool LogOwner::isViewersHalfRead(int inflow)
{
    const LogImage& image = registration()->attachment().image();
    const int fill = image.fill(0);
    const int unread = inflow < image.bufferSize() - m_viewersFill ? m_viewersFill + inflow
                                                                   : image.bufferSize() / 2;
    const auto now = std::chrono::steady_clock::now();
    if (fill < unread)
        m_viewersReadAt = now;
    return image.users(Role::Reader) > 0 && m_viewersReadAt &&
           now - *m_viewersReadAt < viewerPatience;
}

LogOwner::Drained LogOwner::drain()
{
    Drained drained;
    if (!IsOpen())
        return drained;
    LogAttachment& attachment = registration()->attachment();
    LogImage& image = attachment.image();
    if (image.fill(1) == 0 && image.fill(0) <= image.bufferSize() / 4 * 3)
        return drained; // an idle log is left alone

    drained.timedOut = attachment.lock() == platform::LockResult::TimedOut;
    drained.fillBefore = image.fill(1);
    if (drained.fillBefore > 0) {
        bool taken = m_staging->take(image);
        if (!taken && m_staging->pending().empty()) { // not full, so spoilt by somebody
            m_staging->discardIfDamaged();
            taken = m_staging->take(image);
        }
        drained.stagingFull = !taken;
        drained.bytes = drained.stagingFull ? 0 : drained.fillBefore;
    }
    drained.trimmed = trimViewersHalf(drained.fillBefore);
    attachment.unlock();
    return drained;
}

std::string_view LogOwner::pending() const
{
    return m_staging ? m_staging->pending() : std::string_view();
}

void LogOwner::markWritten(std::size_t bytes)
{
    if (m_staging)
        m_staging->markWritten(bytes);
}

std::size_t LogOwner::stagedBytes() const
{
    return m_staging ? m_staging->bytes() : 0;
}

std::size_t LogOwner::stagingCapacity() const
{
    return m_staging ? m_staging->size() : 0;
}

LineLedger LogOwner::makeLedger() const
{
    return LineLedger(IsOpen() ? registration()->attachment().reserve() : nullptr);
}

std::optional<long> LogOwner::nextIndexIfIdle()
{
    if (!IsOpen())
        return std::nullopt;
    const Lock lock(this);
    const LogImage& image = registration()->attachment().image();
    if (image.fill(1) > 0 || stagedBytes() > 0)
        return std::nullopt;
    return image.index();
}

} // namespace vlbase::logging

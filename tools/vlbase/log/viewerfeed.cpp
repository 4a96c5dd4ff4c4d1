#include "viewerfeed.h"

#include "filefollower.h"
#include "instance.h"
#include "livesource.h"

#include <VLBase/logging/logstatus.h>
#include <VLBase/logging/viewerclaim.h>

#include <chrono>
#include <utility>

namespace vlbase::tool::log {
namespace {

using namespace std::chrono_literals;

constexpr auto pollTime = 5ms;
constexpr auto ownerCheckTime = 100ms;
constexpr auto takeTime = 100ms;
constexpr std::size_t mostWaiting = 128 * 1024 * 1024;

} // namespace

ViewerFeed::ViewerFeed(Tell tell)
    : m_tell(std::move(tell))
    , m_thread([this] { work(); })
{
}

ViewerFeed::~ViewerFeed()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isFinishing = true;
        m_isAbandoned = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

bool ViewerFeed::take(std::string& lines)
{
    lines.clear();
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, takeTime, [this] { return !m_lines.empty() || m_hasEnded; });
        if (m_lines.empty())
            return !m_hasEnded;
        std::swap(lines, m_lines);
    }
    m_changed.notify_all();
    return true;
}

void ViewerFeed::finish()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isFinishing = true;
    }
    m_changed.notify_all();
}

bool ViewerFeed::isFinishing()
{
    const std::lock_guard lock(m_mutex);
    return m_isFinishing;
}

void ViewerFeed::work()
{
    std::chrono::steady_clock::time_point lookedAt{};
    while (!isFinishing()) {
        const auto now = std::chrono::steady_clock::now();
        if (now - lookedAt > ownerCheckTime) {
            lookedAt = now;
            findOwner();
        }
        if (pollOnce())
            continue;
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, pollTime, [this] { return m_isFinishing; });
    }
    while (pollOnce()) {
    }
    {
        const std::lock_guard lock(m_mutex);
        m_hasEnded = true;
    }
    m_changed.notify_all();
}

/// Looks whether an owner is there, and makes the source with the first one.
void ViewerFeed::findOwner()
{
    const logging::LogStatus status = logging::peekLog();
    const bool isThere = status.hasOwner() && !status.fileName.empty();
    if (!isThere) {
        if (m_hasOwner)
            m_tell(QStringLiteral("the log's owner has ended; waiting for the next one"));
        else if (!m_hasToldAbsence && !status.hasOwner())
            m_tell(
                QStringLiteral("%1; waiting for '%2'").arg(absenceText(status), ownCommandLine()));
        m_hasToldAbsence = true;
        m_hasOwner = false;
        return;
    }
    if (!m_source && !makeSource(status.fileName))
        return;
    m_source->fileChanged(status.fileName);
    if (!m_hasOwner)
        m_tell(QStringLiteral("showing the log %1").arg(m_source->description()));
    m_hasOwner = true;
}

bool ViewerFeed::makeSource(const std::string& file)
{
    logging::ViewerClaim claim;
    if (!claim.take()) {
        m_source = std::make_unique<FileFollower>(file);
        return true;
    }
    auto live = std::make_unique<LiveSource>(std::move(claim));
    if (!live->isOpen())
        return false;
    m_live = live.get();
    m_source = std::move(live);
    return true;
}

/// \return whether more is likely to be there.
bool ViewerFeed::pollOnce()
{
    if (!m_source)
        return false;
    bool hasMore = m_source->poll(m_polled);
    if (m_live && m_live->gap()) {
        const LiveSource::Gap gap = *m_live->gap();
        if (goOnFromFile(gap.lastIndex)) {
            m_polled.resize(gap.position);
            hasMore = true;
        }
    }
    if (!m_polled.empty())
        hand(m_polled);
    const std::lock_guard lock(m_mutex);
    return hasMore && !m_isAbandoned;
}

/// The lines that the live buffer has lost, and all that follow, are in the owner's file.
bool ViewerFeed::goOnFromFile(int lastIndex)
{
    const logging::LogStatus status = logging::peekLog();
    if (!status.hasOwner() || status.fileName.empty())
        return false;
    auto follower = std::make_unique<FileFollower>(status.fileName, lastIndex);
    if (!follower->isOpen())
        return false;
    m_live = nullptr;
    m_source = std::move(follower);
    m_tell(QStringLiteral("the live buffer ran over; going on %1").arg(m_source->description()));
    return true;
}

/// Gives lines to the viewer; waits while it has too many of them already.
void ViewerFeed::hand(std::string& lines)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_lines.size() < mostWaiting || m_isAbandoned; });
    if (m_lines.empty())
        std::swap(m_lines, lines);
    else
        m_lines += lines;
    lock.unlock();
    lines.clear();
    m_changed.notify_all();
}

} // namespace vlbase::tool::log

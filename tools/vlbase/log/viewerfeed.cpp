#include "viewerfeed.h"

#include "instance.h"

#include <VLBase/logging/logstatus.h>
#include <VLBase/logging/viewerclaim.h>

#include <QDateTime>
#include <QDir>

#include <chrono>
#include <utility>

namespace vlbase::tool::log {
namespace {

using namespace std::chrono_literals;

constexpr auto pollTime = 5ms;
constexpr auto ownerCheckTime = 100ms;
constexpr auto takeTime = 100ms;
constexpr std::size_t mostWaiting = 128 * 1024 * 1024;

using logreading::LogSeries;

QString shown(const std::string& file)
{
    return QDir::toNativeSeparators(QString::fromStdString(file));
}

} // namespace

ViewerFeed::ViewerFeed(Start start, std::unique_ptr<logreading::LogFollower> follower, Tell tell)
    : m_tell(std::move(tell))
    , m_start(std::move(start))
    , m_startedAt(QDateTime::currentSecsSinceEpoch())
    , m_follower(std::move(follower))
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
        if (m_start.file.empty() && now - lookedAt > ownerCheckTime) {
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

/// Looks whether an owner is there, and which file it writes.
void ViewerFeed::findOwner()
{
    const logging::LogStatus status = logging::peekLog();
    const bool isFirstLook = std::exchange(m_isFirstLook, false);
    if (!status.hasOwner()) {
        if (std::exchange(m_hasOwner, false))
            m_tell(QStringLiteral("the log's owner has ended; waiting for the next one"));
        else if (isFirstLook)
            m_tell(
                QStringLiteral("%1; waiting for '%2'").arg(absenceText(status), ownCommandLine()));
        return;
    }
    if (isFirstLook)
        m_startedAt = 0;
    const bool isNew = !std::exchange(m_hasOwner, true);
    if (m_follower && m_follower->name() == status.fileName) {
        if (isNew)
            m_tell(QStringLiteral("showing the log from %1").arg(shown(status.fileName)));
        return;
    }
    useFile(status.fileName);
}

/// Goes over to another file of the owner's, once the one before is read to its end.
void ViewerFeed::useFile(const std::string& file)
{
    QString reason = QStringLiteral("the owner names no file");
    auto next = std::make_unique<logreading::LogFollower>(file, LogSeries::Extent::Rotated);
    if (file.empty() || !next->open(reason))
        return useLive(file, reason);
    if (!next->looksLikeALog())
        return useLive(file, QStringLiteral("it is no log of ours"));
    while (pollOnce()) {
    }
    if (m_follower && m_follower->lastSeconds())
        next->startBehind(*m_follower->lastSeconds(), m_follower->lastNumber());
    else if (m_startedAt != 0 && m_start.lines)
        next->startBehind(m_startedAt, 0);
    else if (m_start.lines)
        next->startAtEnd(*m_start.lines);
    m_follower = std::move(next);
    m_live.reset();
    m_told.clear();
    m_tell(QStringLiteral("showing the log from %1").arg(shown(file)));
}

void ViewerFeed::useLive(const std::string& file, const QString& reason)
{
    if (m_live)
        return;
    const QString why =
        file.empty() ? reason : QStringLiteral("cannot read %1: %2").arg(shown(file), reason);
    logging::ViewerClaim claim;
    if (!claim.take()) {
        tellOnce(QStringLiteral("%1; another viewer has the live buffer").arg(why));
        return;
    }
    auto live = std::make_unique<LiveSource>(std::move(claim));
    if (!live->isOpen())
        return;
    m_live = std::move(live);
    tellOnce(QStringLiteral("%1; showing the log live").arg(why));
}

void ViewerFeed::tellOnce(const QString& text)
{
    if (std::exchange(m_told, text) != text)
        m_tell(text);
}

/// \return whether more is likely to be there.
bool ViewerFeed::pollOnce()
{
    if (!m_follower && !m_live)
        return false;
    const bool hasMore = m_live ? m_live->poll(m_polled) : m_follower->poll(m_polled);
    if (!m_polled.empty())
        hand(m_polled);
    const std::lock_guard lock(m_mutex);
    return hasMore && !m_isAbandoned;
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

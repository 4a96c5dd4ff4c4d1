#pragma once

#include "livesource.h"
#include "tools/logreading/logfollower.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace vlbase::tool::log {

/// Brings the lines of the log to a viewer, from a thread of its own: a terminal that is slow or
/// stopped must not keep the live buffer from being emptied.
///
/// Finds the log's owner, says so when there is none or it goes, and goes on when it comes. Follows
/// the owner's file, through its rotations and when the owner begins another one. Where that
/// file cannot be read or is none of a log, one viewer of a user empties the live buffer.
class ViewerFeed
{
public:
    using Tell = std::function<void(const QString&)>;

    /// Where to begin, and in what.
    struct Start
    {
        std::optional<std::int64_t> lines = 0; ///< with the last ones; none: with the first of all
        std::string file;                      ///< follows this one, without a log; empty: the log
    };

    /// \param follower of `start.file`, opened; null for the log
    /// `tell` is called from the feed's thread.
    ViewerFeed(Start start, std::unique_ptr<logreading::LogFollower> follower, Tell tell);
    /// Ends the thread without a last look.
    ~ViewerFeed();
    ViewerFeed(const ViewerFeed&) = delete;
    ViewerFeed& operator=(const ViewerFeed&) = delete;

    /// Waits a short time for lines, each with a zero byte at its end, and hands them over.
    /// \return false when the feed has ended and all its lines were taken.
    bool take(std::string& lines);

    /// Takes what is there now for the last time; `take` gives it and then ends.
    void finish();

private:
    void work();
    void findOwner();
    void useFile(const std::string& file);
    void useLive(const std::string& file, const QString& reason);
    void tellOnce(const QString& text);
    bool pollOnce();
    void hand(std::string& lines);
    bool isFinishing();

    Tell m_tell;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_lines; // for `take`
    bool m_isFinishing = false;
    bool m_isAbandoned = false;
    bool m_hasEnded = false;

    // Of the feed's thread alone.
    Start m_start;
    std::int64_t m_startedAt = 0; // seconds since 1970
    std::unique_ptr<logreading::LogFollower> m_follower;
    std::unique_ptr<LiveSource> m_live; // instead of it
    bool m_isFirstLook = true;
    bool m_hasOwner = false;
    QString m_told;
    std::string m_polled;

    std::thread m_thread;
};

} // namespace vlbase::tool::log

#pragma once

#include "linesource.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace vlbase::tool::log {

class LiveSource;

/// Brings the lines of the log to a viewer, from a thread of its own: a terminal that is slow or
/// stopped must not keep the live buffer from being emptied.
///
/// Finds the log's owner, says so when there is none or it goes, and goes on when it comes. The
/// first viewer of a user empties the live buffer, the others follow the owner's file. The first
/// one goes over to the file when the live buffer ran over before it was emptied.
class ViewerFeed
{
public:
    using Tell = std::function<void(const QString&)>;

    /// `tell` is called from the feed's thread.
    explicit ViewerFeed(Tell tell);
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
    bool makeSource(const std::string& file);
    bool pollOnce();
    bool goOnFromFile(int lastIndex);
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
    std::unique_ptr<LineSource> m_source;
    LiveSource* m_live = nullptr; // the source, when it is that
    bool m_hasOwner = false;
    bool m_hasToldAbsence = false;
    std::string m_polled;

    std::thread m_thread;
};

} // namespace vlbase::tool::log

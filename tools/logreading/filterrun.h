#pragma once

#include "linereader.h"
#include "logseries.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace vlbase::logreading {

/// Rows of a view that a filter lets through, of one stretch of it.
struct FilterHits
{
    std::int64_t firstRow = 0;       ///< that the stretch begins with
    std::int64_t endRow = 0;         ///< behind its last one
    std::vector<std::uint32_t> rows; ///< counted from `firstRow`, ascending
};

/// Looks through a view with a filter (a search is one too), on several threads and from the first
/// row on. The destructor cancels.
///
///     FilterRun run(log.view(), filter, [this] { emit moreFound(); });
///     FilterHits hits;
///     while (run.take(hits))      // in the order of the rows; whatever is ready
///         model.append(hits);
class FilterRun
{
public:
    using Notify = std::function<void()>;

    /// \param notify called from the threads of the run when more can be taken, and at its end
    /// \param fromRow rows before it are left out, as far as they make a whole stretch: for a view
    ///     that has grown
    /// \param threads 0: one for each core
    FilterRun(LogView view, const Filter& filter, Notify notify = {}, std::int64_t fromRow = 0,
              unsigned threads = 0);
    ~FilterRun();
    FilterRun(const FilterRun&) = delete;
    FilterRun& operator=(const FilterRun&) = delete;

    /// The next stretch, when it is ready. A stretch without hits is given too.
    bool take(FilterHits& hits);
    /// Waits for it; false at the end.
    bool wait(FilterHits& hits);
    /// The threads end within milliseconds; what is ready can still be taken.
    void cancel() { m_isCancelled = true; }
    /// All that there will be can be taken.
    bool isFinished() const;
    /// From 0 to 1.
    double progress() const;

private:
    struct Stretch
    {
        std::size_t part = 0;
        std::size_t piece = 0;
        std::uint32_t from = 0; // of the piece's lines
        bool isReady = false;
        FilterHits hits;
    };

    void work();
    void look(Stretch& stretch, FilterPlan& plan, LineReader& reader);

    LogView m_view;
    Filter m_filter;
    Notify m_notify;
    std::atomic<bool> m_isCancelled{false};
    std::atomic<std::size_t> m_next{0};
    std::vector<Stretch> m_stretches;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_taken = 0;
    std::size_t m_ready = 0;
    unsigned m_working = 0;

    std::vector<std::thread> m_threads;
};

} // namespace vlbase::logreading

#include "filterrun.h"

#include <algorithm>
#include <utility>

namespace vlbase::logreading {
namespace {

constexpr std::int64_t bytesAtOnce = 512 * 1024;

/// Looks through one stretch.
class Look
{
public:
    Look(const LogView::Part& part, const IndexView::Piece& piece, const FilterPlan& plan,
         LineReader& reader, const std::atomic<bool>& isCancelled)
        : m_part(part)
        , m_block(*piece.block)
        , m_size(piece.size)
        , m_plan(plan)
        , m_reader(reader)
        , m_isCancelled(isCancelled)
    {
    }

    void run(std::uint32_t from, std::vector<std::uint32_t>& rows)
    {
        const std::uint32_t start = from;
        while (from < m_size && !m_isCancelled) {
            std::uint32_t to = from;
            while (to < m_size && m_block.end(to) - m_block.begin(from) <= bytesAtOnce)
                ++to;
            to = std::max(to, from + 1);
            lookAt(from, to, start, rows);
            from = to;
        }
    }

private:
    Truth judge(std::uint32_t row) const
    {
        const IndexedLine line = m_block.line(row);
        return line.isVague ? Truth::Maybe : m_plan.judge(line.sender, line.number, line.seconds);
    }

    bool isReadingNeeded(std::uint32_t from, std::uint32_t to) const
    {
        while (from < to && judge(from) != Truth::Maybe)
            ++from;
        return from < to;
    }

    bool holds(std::string_view text) { return m_plan.filter().holds(fieldsOf(text, m_scratch)); }

    void lookAt(std::uint32_t from, std::uint32_t to, std::uint32_t start,
                std::vector<std::uint32_t>& rows)
    {
        const TextFinder* const finder = m_plan.filter().required();
        if (finder != nullptr && isReadingNeeded(from, to))
            search(*finder, from, to, start, rows);
        else
            lookAtEach(from, to, start, rows);
    }

    std::string_view read(std::uint32_t from, std::uint32_t to)
    {
        return m_reader.bytes(m_part.file, m_block.begin(from), m_block.end(to - 1));
    }

    std::string_view lineIn(std::string_view bytes, std::uint32_t from, std::uint32_t row) const
    {
        const auto begin = static_cast<std::size_t>(m_block.begin(row) - m_block.begin(from));
        const auto size = static_cast<std::size_t>(m_block.end(row) - m_block.begin(row));
        return begin < bytes.size() ? bytes.substr(begin, size) : std::string_view();
    }

    void lookAtEach(std::uint32_t from, std::uint32_t to, std::uint32_t start,
                    std::vector<std::uint32_t>& rows)
    {
        std::string_view bytes;
        bool isRead = false;
        for (std::uint32_t row = from; row < to; ++row) {
            Truth truth = judge(row);
            if (truth == Truth::Maybe) {
                if (!std::exchange(isRead, true))
                    bytes = read(from, to);
                truth = holds(lineIn(bytes, from, row)) ? Truth::Yes : Truth::No;
            }
            if (truth == Truth::Yes)
                rows.push_back(row - start);
        }
    }

    /// Only the lines that have the text are looked at.
    void search(const TextFinder& finder, std::uint32_t from, std::uint32_t to, std::uint32_t start,
                std::vector<std::uint32_t>& rows)
    {
        std::uint32_t row = from;
        const std::string_view bytes = read(from, to);
        const std::int64_t base = m_block.begin(from);
        std::size_t place = finder.find(bytes);
        while (place != TextFinder::npos) {
            while (m_block.end(row) - base <= static_cast<std::int64_t>(place))
                ++row;
            const Truth truth = judge(row);
            if (truth == Truth::Yes || (truth == Truth::Maybe && holds(lineIn(bytes, from, row))))
                rows.push_back(row - start);
            place = finder.find(bytes, static_cast<std::size_t>(m_block.end(row) - base));
        }
    }

    const LogView::Part& m_part;
    const IndexBlock& m_block;
    std::uint32_t m_size;
    const FilterPlan& m_plan;
    LineReader& m_reader;
    const std::atomic<bool>& m_isCancelled;
    logging::LogLine m_scratch;
};

} // namespace

FilterRun::FilterRun(LogView view, const Filter& filter, Notify notify, std::int64_t fromRow,
                     unsigned threads)
    : m_view(std::move(view))
    , m_filter(filter)
    , m_notify(std::move(notify))
{
    for (std::size_t part = 0; part < m_view.parts().size(); ++part) {
        const LogView::Part& lines = m_view.parts()[part];
        for (std::size_t piece = 0; piece < lines.index.pieces(); ++piece) {
            const IndexView::Piece found = lines.index.piece(piece);
            Stretch stretch;
            stretch.part = part;
            stretch.piece = piece;
            stretch.hits.firstRow = lines.firstRow + found.first;
            stretch.hits.endRow = stretch.hits.firstRow + found.size;
            if (stretch.hits.endRow <= fromRow)
                continue;
            stretch.from = static_cast<std::uint32_t>(
                std::max<std::int64_t>(fromRow - stretch.hits.firstRow, 0));
            stretch.hits.firstRow += stretch.from;
            m_stretches.push_back(std::move(stretch));
        }
    }
    const unsigned cores =
        std::max(threads == 0 ? std::thread::hardware_concurrency() : threads, 1u);
    m_working = static_cast<unsigned>(std::min<std::size_t>(cores, m_stretches.size()));
    for (unsigned i = m_working; i > 0; --i)
        m_threads.emplace_back([this] { work(); });
}

FilterRun::~FilterRun()
{
    cancel();
    for (std::thread& thread : m_threads)
        thread.join();
}

void FilterRun::work()
{
    // A plan for each file, since each numbers its senders by itself.
    std::vector<FilterPlan> plans;
    LineReader reader;
    for (std::size_t i = m_next++; i < m_stretches.size() && !m_isCancelled; i = m_next++) {
        Stretch& stretch = m_stretches[i];
        while (plans.size() <= stretch.part) {
            plans.emplace_back(m_filter);
            m_view.parts()[plans.size() - 1].file->index().teach(plans.back());
        }
        look(stretch, plans[stretch.part], reader);
        {
            const std::lock_guard lock(m_mutex);
            stretch.isReady = !m_isCancelled;
            m_ready += stretch.isReady ? 1 : 0;
        }
        m_changed.notify_all();
        if (m_notify)
            m_notify();
    }
    {
        const std::lock_guard lock(m_mutex);
        --m_working;
    }
    m_changed.notify_all();
    if (m_notify)
        m_notify();
}

void FilterRun::look(Stretch& stretch, FilterPlan& plan, LineReader& reader)
{
    const LogView::Part& part = m_view.parts()[stretch.part];
    Look look(part, part.index.piece(stretch.piece), plan, reader, m_isCancelled);
    look.run(stretch.from, stretch.hits.rows);
}

bool FilterRun::take(FilterHits& hits)
{
    const std::lock_guard lock(m_mutex);
    if (m_taken == m_stretches.size() || !m_stretches[m_taken].isReady)
        return false;
    hits = std::move(m_stretches[m_taken++].hits);
    return true;
}

bool FilterRun::wait(FilterHits& hits)
{
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] {
            return m_working == 0 || (m_taken < m_stretches.size() && m_stretches[m_taken].isReady);
        });
    }
    return take(hits);
}

bool FilterRun::isFinished() const
{
    const std::lock_guard lock(m_mutex);
    return m_working == 0;
}

double FilterRun::progress() const
{
    const std::lock_guard lock(m_mutex);
    return m_stretches.empty()
               ? 1.0
               : static_cast<double>(m_ready) / static_cast<double>(m_stretches.size());
}

} // namespace vlbase::logreading

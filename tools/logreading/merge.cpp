#include "merge.h"

#include <utility>

namespace vlbase::logreading {
namespace {

/// The time of a row, or of the last one before it that has one.
std::int64_t timeOf(const LogView& view, std::int64_t row, std::int64_t before)
{
    for (; row >= 0; --row) {
        if (const auto seconds = view.line(row).line.seconds)
            return *seconds;
    }
    return before;
}

} // namespace

FilteredRows::FilteredRows(LogView view, const Filter& filter)
    : m_view(std::move(view))
    , m_run(m_view, filter)
{
}

std::int64_t FilteredRows::next()
{
    while (m_at == m_hits.rows.size()) {
        m_at = 0;
        m_hits.rows.clear();
        if (!m_run.wait(m_hits))
            return -1;
    }
    return m_hits.firstRow + m_hits.rows[m_at++];
}

Merge::Merge(const std::vector<LogView>& logs, const Filter& filter)
{
    for (const LogView& log : logs) {
        Head head;
        head.rows = std::make_unique<FilteredRows>(log, filter);
        m_heads.push_back(std::move(head));
    }
    for (Head& head : m_heads)
        advance(head);
}

void Merge::advance(Head& head)
{
    head.row = head.rows->next();
    if (head.row >= 0)
        head.time = timeOf(head.rows->view(), head.row, head.time);
}

bool Merge::next(Row& row)
{
    Head* first = nullptr;
    for (Head& head : m_heads) {
        if (head.row >= 0 && (first == nullptr || head.time < first->time))
            first = &head;
    }
    if (first == nullptr)
        return false;
    row = {static_cast<std::size_t>(first - m_heads.data()), first->row};
    advance(*first);
    return true;
}

} // namespace vlbase::logreading

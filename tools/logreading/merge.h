#pragma once

#include "filterrun.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace vlbase::logreading {

/// The rows of a view that a filter lets through, one after another, while it is looked through.
class FilteredRows
{
public:
    FilteredRows(LogView view, const Filter& filter);

    const LogView& view() const { return m_view; }
    /// \return the next row; -1 behind the last one.
    std::int64_t next();

private:
    LogView m_view;
    FilterRun m_run;
    FilterHits m_hits;
    std::size_t m_at = 0;
};

/// Merges the rows of several logs by their times; equal times by the order of the logs. The lines
/// of a log keep their order, and one without a time stays behind the line before it.
class Merge
{
public:
    Merge(const std::vector<LogView>& logs, const Filter& filter);

    struct Row
    {
        std::size_t log = 0;
        std::int64_t row = 0;
    };
    /// \return false behind the last one.
    bool next(Row& row);
    const LogView& view(std::size_t log) const { return m_heads[log].rows->view(); }

private:
    struct Head
    {
        std::unique_ptr<FilteredRows> rows;
        std::int64_t row = -1;
        std::int64_t time = std::numeric_limits<std::int64_t>::min();
    };

    static void advance(Head& head);

    std::vector<Head> m_heads;
};

} // namespace vlbase::logreading

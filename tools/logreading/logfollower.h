#pragma once

#include "linereader.h"
#include "logseries.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vlbase::logreading {

/// Gives each line of a series of files once, in their order, as they come; what was given is
/// forgotten, so it may go on for as long as it likes. For one thread.
class LogFollower
{
public:
    LogFollower(const std::string& name, LogSeries::Extent extent)
        : m_series(name, extent)
    {
    }

    /// \return false when the file cannot be opened; \a reason tells why.
    bool open(QString& reason) { return m_series.open(reason); }
    /// Whether the file is empty or its first or its last lines are those of a log.
    bool looksLikeALog() const;

    /// Begins with the last \a lines lines; without it, with the first one of all.
    void startAtEnd(std::int64_t lines) { m_series.startAtEnd(lines); }
    /// Leaves out lines that were written before \a seconds (since 1970), and those of that very
    /// second up to \a number, when that is not 0.
    void startBehind(std::int64_t seconds, int number);

    /// Appends lines that came, some MiB at most, each with a zero byte at its end.
    /// \return whether more is likely to be there already.
    bool poll(std::string& lines);

    /// The last line given that has a time, for `startBehind`.
    std::optional<std::int64_t> lastSeconds() const { return m_lastSeconds; }
    int lastNumber() const { return m_lastNumber; }
    const std::string& name() const { return m_series.name(); }

private:
    bool give(std::string& lines);
    bool isKnown(const IndexedLine& line);
    bool goToNextFile();

    LogSeries m_series;
    LineReader m_reader;
    std::shared_ptr<LogFile> m_file; // the one that is given now
    std::int64_t m_row = 0;          // the next one of it
    std::optional<std::int64_t> m_lastSeconds;
    int m_lastNumber = 0;
    std::optional<std::int64_t> m_behindSeconds;
    int m_behindNumber = 0;
};

} // namespace vlbase::logreading

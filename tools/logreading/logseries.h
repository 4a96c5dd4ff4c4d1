#pragma once

#include "logfile.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace vlbase::logreading {

/// Where a line is, for as long as its file is there, whatever name that has.
struct LinePlace
{
    FileIdentity file;
    std::int64_t offset = 0;

    friend bool operator==(const LinePlace& a, const LinePlace& b)
    {
        return a.file == b.file && a.offset == b.offset;
    }
};

/// The lines of a series of files as they were at a moment, in rows from 0 on. Cheap to make and
/// to copy; keeps its files readable; any thread.
class LogView
{
public:
    struct Part
    {
        std::shared_ptr<LogFile> file;
        IndexView index;
        std::int64_t firstRow = 0;
    };

    struct Line
    {
        const Part* part = nullptr;
        IndexedLine line;
    };

    std::int64_t rows() const { return m_rows; }
    const std::vector<Part>& parts() const { return m_parts; }
    Line line(std::int64_t row) const;
    LinePlace placeOf(std::int64_t row) const;
    /// \return -1 when the place is in none of the files.
    std::int64_t rowOf(const LinePlace& place) const;

    void add(std::shared_ptr<LogFile> file);

private:
    std::vector<Part> m_parts;
    std::int64_t m_rows = 0;
};

/// A log file with the older ones of its rotation: F.N to F.1, then F; followed while it is
/// written and rotated. One thread updates, any thread views.
///
///     LogSeries log("/var/log/station.txt", LogSeries::Extent::Rotated);
///     QString reason;
///     if (log.open(reason))
///         while (log.update() == LogSeries::Update::More) { }
///     model.show(log.view());
class LogSeries
{
public:
    enum class Extent {
        Rotated, ///< F.N to F
        Single   ///< F alone, and what is begun after it
    };

    LogSeries(std::string name, Extent extent);

    /// \return false when F cannot be opened; \a reason tells why.
    bool open(QString& reason);

    enum class Update {
        Unchanged,
        Changed, ///< there are more lines
        More,    ///< the same, and there is more to read at once
        Reset,   ///< a file was cut or written anew: rows have a new meaning
        Failed   ///< a file cannot be read any more; `errorText`
    };

    /// Reads on, for some milliseconds at most; looks for files that were begun when all is read.
    Update update();
    /// Nobody writes any more: what follows a file's last line feed counts as a line. After all is
    /// read.
    void takeHalfLines();
    /// Begins with the last \a lines lines of what is there, without indexing all before. After
    /// `open`, before the first update.
    void startAtEnd(std::int64_t lines);
    /// Lets go of the oldest files that have no name any more, because the rotation removed them.
    /// Rows then have a new meaning, as after a reset. With \a next, only of those before it.
    /// \return whether there were any.
    bool dropRemoved(const LogFile* next = nullptr);

    LogView view() const;
    std::vector<std::shared_ptr<LogFile>> files() const;
    /// The one that was begun after \a file, once that is read to its end; null before.
    std::shared_ptr<LogFile> fileAfter(const std::shared_ptr<LogFile>& file) const;
    const std::string& name() const { return m_name; }
    std::int64_t indexedBytes() const;
    std::int64_t totalBytes() const;
    const QString& errorText() const { return m_errorText; }

private:
    std::string nameOf(int number) const;
    std::vector<std::string> names() const;
    bool isKnown(const FileIdentity& identity) const;
    Update readOn();
    bool addNewFiles();
    std::vector<std::shared_ptr<LogFile>> newFiles() const;

    std::string m_name;
    Extent m_extent;
    mutable std::mutex m_mutex;                        // of the list
    std::vector<std::shared_ptr<LogFile>> m_files;     // the oldest first
    std::vector<std::shared_ptr<LogFile>> m_strangers; // older ones that are none of it
    std::size_t m_reading = 0;                         // the file that is not read to its end
    QString m_errorText;
};

} // namespace vlbase::logreading

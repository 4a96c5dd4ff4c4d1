#pragma once

#include "logindex.h"
#include "platform/nativefile.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace vlbase::logreading {

using FileIdentity = tool::platform::FileIdentity;

/// One file of a log and the index of its lines, as it grows. It stays readable when its owner
/// renames or removes it. One thread updates; any thread reads.
class LogFile
{
public:
    /// \return null when it cannot be opened or is no file (a directory, a device); \a reason then
    ///         tells why.
    static std::shared_ptr<LogFile> open(const std::string& name, QString& reason);

    enum class Update {
        Unchanged,
        Grown,    ///< there are more lines
        More,     ///< the same, and the end is not reached
        Replaced, ///< what was read is not there any more: the file was cut or written anew
        Failed,   ///< it cannot be read; `errorText`
    };

    /// Indexes the lines that came, a few MiB at a time so that it is soon back. A line is one
    /// when its line feed is there.
    Update update();
    /// The same file, to be read anew from its beginning; null when that fails.
    std::shared_ptr<LogFile> reopened();
    /// Takes what stands behind the last line feed for a line, when nobody will write on.
    void takeHalfLine();
    /// Begins with the index behind \a place: where a line begins. Before the first update.
    void startAt(std::int64_t place);

    /// Gives up the memory of lines before \a row, which nobody asks for any more.
    void forget(std::int64_t row) { m_index.forget(row); }
    const LogIndex& index() const { return m_index; }
    const FileIdentity& identity() const { return m_identity; }
    const tool::platform::NativeFile& file() const { return m_file; }
    std::int64_t size() const { return m_file.size(); }
    /// How far it is indexed; with `size`, for progress.
    std::int64_t indexedBytes() const { return m_indexed.load(std::memory_order_relaxed); }
    const QString& errorText() const { return m_errorText; }

private:
    bool isStillThere() const;
    void indexLines(std::string_view data, std::int64_t start);

    tool::platform::NativeFile m_file;
    FileIdentity m_identity;
    LogIndex m_index;
    std::atomic<std::int64_t> m_indexed{0};
    std::string m_buffer;
    std::string m_rest;     // behind `m_indexed`, without a line feed so far
    std::string m_lastRead; // the last bytes before `m_indexed`
    QString m_errorText;
};

} // namespace vlbase::logreading

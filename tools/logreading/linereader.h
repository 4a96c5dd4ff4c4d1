#pragma once

#include "logfile.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vlbase::logreading {

/// Reads lines out of files, ahead of those that are asked for. For one thread.
class LineReader
{
public:
    /// \a ahead: bytes to read at once; little for single lines here and there.
    explicit LineReader(std::size_t ahead = 1024 * 1024)
        : m_ahead(ahead)
    {
    }

    /// The bytes of a file from \a begin to \a end, a few lines at most; valid until the next
    /// call. Fewer where the file was cut meanwhile or cannot be read.
    std::string_view bytes(const std::shared_ptr<LogFile>& file, std::int64_t begin,
                           std::int64_t end);
    /// A line without its line end.
    std::string_view text(const std::shared_ptr<LogFile>& file, const IndexedLine& line)
    {
        return withoutLineEnd(bytes(file, line.begin, line.end));
    }

private:
    std::size_t m_ahead;
    std::shared_ptr<LogFile> m_file;
    std::int64_t m_start = 0;
    std::string m_buffer;
    std::size_t m_size = 0;
};

} // namespace vlbase::logreading

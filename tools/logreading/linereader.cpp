#include "linereader.h"

#include <algorithm>

namespace vlbase::logreading {

std::string_view LineReader::bytes(const std::shared_ptr<LogFile>& file, std::int64_t begin,
                                   std::int64_t end)
{
    const auto wanted = static_cast<std::size_t>(end - begin);
    const bool isThere =
        file == m_file && begin >= m_start && end <= m_start + static_cast<std::int64_t>(m_size);
    if (!isThere) {
        const std::size_t most = std::max(m_ahead, wanted);
        if (m_buffer.size() < most)
            m_buffer.resize(most);
        m_file = file;
        m_start = begin;
        m_size = 0;
        // Never beyond what is indexed: that may change.
        const auto known = static_cast<std::size_t>(
            std::max(file->indexedBytes() - begin, static_cast<std::int64_t>(wanted)));
        const std::size_t size = std::min(most, known);
        while (m_size < size) {
            const std::int64_t got = file->file().readAt(begin + static_cast<std::int64_t>(m_size),
                                                         m_buffer.data() + m_size, size - m_size);
            if (got <= 0)
                break;
            m_size += static_cast<std::size_t>(got);
        }
    }
    const auto from = static_cast<std::size_t>(begin - m_start);
    return std::string_view(m_buffer.data(), m_size).substr(from, wanted);
}

} // namespace vlbase::logreading

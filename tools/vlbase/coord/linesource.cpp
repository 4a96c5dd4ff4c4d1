#include "linesource.h"

#include "tools/vlbase/platform/standardstreams.h"

#include <cstring>
#include <utility>

namespace vlbase::tool::coord {
namespace {

// A line is held in the buffer whole; half a buffer is more than any position needs.
constexpr std::size_t bufferSize = std::size_t{256} * 1024;
constexpr std::size_t longestLine = bufferSize / 2;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

bool LineSource::open(const QString& path)
{
    m_buffer.resize(bufferSize);
    m_isStandardInput = path == u"-";
    if (!m_isStandardInput) {
        m_file.setFileName(path);
        if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return false;
        m_size = m_file.isSequential() ? 0 : m_file.size();
    }
    if (!fill())
        return !m_hasFailed;
    if (std::string_view(m_buffer.data(), m_end).substr(0, byteOrderMark.size()) == byteOrderMark)
        m_begin = byteOrderMark.size();
    return true;
}

bool LineSource::fill()
{
    if (m_isAtEnd)
        return false;
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    char* free = m_buffer.data() + m_end;
    const std::size_t room = m_buffer.size() - m_end;
    const std::ptrdiff_t read =
        m_isStandardInput
            ? platform::readInput(free, room)
            : static_cast<std::ptrdiff_t>(m_file.read(free, static_cast<qint64>(room)));
    m_hasFailed = read < 0;
    if (m_hasFailed && m_isStandardInput)
        m_inputFault = qt_error_string();
    m_isAtEnd = read <= 0;
    if (read > 0)
        m_end += static_cast<std::size_t>(read);
    return read > 0;
}

std::optional<LineSource::Line> LineSource::take(std::size_t length, std::size_t endLength,
                                                 bool isCut)
{
    std::string_view text(m_buffer.data() + m_begin, length);
    if (!text.empty() && text.back() == '\r')
        text.remove_suffix(1);
    m_begin += length + endLength;
    m_taken += static_cast<qint64>(length + endLength);
    return Line{text, isCut};
}

std::optional<LineSource::Line> LineSource::next()
{
    std::size_t searched = 0;
    for (;;) {
        const char* begin = m_buffer.data() + m_begin;
        const std::size_t size = m_end - m_begin;
        const void* found =
            size > searched ? std::memchr(begin + searched, '\n', size - searched) : nullptr;
        if (found) {
            const auto length = static_cast<std::size_t>(static_cast<const char*>(found) - begin);
            const auto line = take(length, 1, false);
            if (!std::exchange(m_skipsToEnd, false))
                return line;
            searched = 0;
            continue;
        }
        if (m_skipsToEnd) {
            take(size, 0, false);
            searched = 0;
        } else if (size >= longestLine) {
            m_skipsToEnd = true;
            return take(size, 0, true);
        } else {
            searched = size;
        }
        if (!fill()) {
            if (m_begin == m_end || m_hasFailed)
                return std::nullopt;
            return take(m_end - m_begin, 0, false);
        }
    }
}

} // namespace vlbase::tool::coord

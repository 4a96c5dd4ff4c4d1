#include "filesink.h"

#include "filetail.h"

#include <algorithm>
#include <utility>

namespace vlbase::tool::log {

FileSink::FileSink(FileStore& store, std::string name, Rotation rotation, Foreign foreign)
    : m_store(store)
    , m_name(std::move(name))
    , m_rotation(rotation)
    , m_foreign(foreign)
{
}

bool FileSink::open()
{
    m_file = m_store.open(m_name);
    if (!m_file) {
        m_errorText = m_store.errorText();
        return false;
    }
    m_size = std::max<std::int64_t>(m_file->size(), 0);
    m_isForeign = m_foreign == Foreign::Refused && !isLogToGoOn(*m_file);
    if (m_isForeign) {
        m_errorText = QStringLiteral("it does not end as a log does");
        m_file.reset();
        return false;
    }
    if (!(m_foreign == Foreign::Refused ? cutTornLine() : endLastLine())) {
        m_errorText = m_store.errorText();
        m_file.reset();
        return false;
    }
    m_errorText.clear();
    return true;
}

bool FileSink::cutTornLine()
{
    const std::int64_t whole = endOfLastWholeLine(*m_file);
    if (whole == m_size)
        return true;
    if (!m_file->cutTo(whole))
        return false;
    m_tornBytes = m_size - whole;
    m_size = whole;
    return true;
}

bool FileSink::endLastLine()
{
    if (endOfLastWholeLine(*m_file) == m_size)
        return true;
    if (m_file->append("\n", 1) != 1)
        return false;
    ++m_size;
    return true;
}

bool FileSink::write(std::string_view lines)
{
    if (isFlushed()) {
        m_text.assign(lines);
        m_written = 0;
    } else {
        m_text += lines;
    }
    return flush();
}

bool FileSink::flush()
{
    while (!isFlushed()) {
        if (!m_file && !open())
            return false;
        std::size_t room = roomForWholeLines();
        if (room == 0) {
            rotate();
            if (!m_file)
                continue;
            // One line longer than the limit, or a file that could not be rotated.
            room = std::max(roomForWholeLines(), m_text.find('\n', m_written) + 1 - m_written);
        }
        const std::int64_t put = m_file->append(m_text.data() + m_written, room);
        if (put <= 0) {
            m_errorText = m_store.errorText();
            return false;
        }
        m_written += static_cast<std::size_t>(put);
        m_size += put;
    }
    m_errorText.clear();
    return true;
}

std::size_t FileSink::roomForWholeLines() const
{
    const std::size_t left = m_text.size() - m_written;
    if (m_rotation.bytes == 0)
        return left;
    // The rest of a line goes where its beginning is.
    if (!isAtLineStart())
        return m_text.find('\n', m_written) + 1 - m_written;
    const std::int64_t room = m_rotation.bytes - m_size;
    if (room <= 0)
        return 0;
    if (static_cast<std::uint64_t>(room) >= left)
        return left;
    const std::size_t end = m_text.rfind('\n', m_written + static_cast<std::size_t>(room) - 1);
    return end == std::string::npos || end < m_written ? 0 : end + 1 - m_written;
}

void FileSink::rotate()
{
    if (m_size == 0)
        return;
    const bool isMoved = m_rotation.keep == 0
                             ? m_store.remove(m_name)
                             : shiftOlderFiles() && m_store.rename(m_name, olderName(1));
    if (!isMoved) {
        m_rotationErrorText = m_store.errorText();
        return;
    }
    m_rotationErrorText.clear();
    m_file.reset();
    removeForgottenFiles();
}

/// Of a time when more were kept.
void FileSink::removeForgottenFiles()
{
    for (int number = m_rotation.keep + 1; m_store.exists(olderName(number)); ++number) {
        const auto file = m_store.open(olderName(number));
        if (!file || !isLogToGoOn(*file) || !m_store.remove(olderName(number)))
            return;
    }
}

bool FileSink::shiftOlderFiles()
{
    int last = 1;
    while (last < m_rotation.keep && m_store.exists(olderName(last)))
        ++last;
    for (int number = last; number > 1; --number) {
        if (!m_store.rename(olderName(number - 1), olderName(number)))
            return false;
    }
    return true;
}

std::string FileSink::olderName(int number) const
{
    return m_name + '.' + std::to_string(number);
}

void FileSink::followName()
{
    if (m_file && isAtLineStart() && !m_file->isCalled(m_name))
        m_file.reset();
}

void FileSink::close()
{
    if (m_file && !isAtLineStart()) {
        const std::size_t start = m_text.rfind('\n', m_written - 1) + 1;
        m_file->cutTo(m_size - static_cast<std::int64_t>(m_written - start));
    }
    m_file.reset();
}

} // namespace vlbase::tool::log

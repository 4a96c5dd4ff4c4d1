#include "filefollower.h"

#include "filetail.h"

#include <VLBase/logging/logline.h>

#include <QDir>

#include <algorithm>
#include <string_view>
#include <utility>

namespace vlbase::tool::log {
namespace {

constexpr std::size_t blockBytes = 256 * 1024;
constexpr std::size_t longestLine = 64 * 1024 * 1024;

// A rotation under way leaves one name free, one that was cut off before it another one.
constexpr int mostFreeNames = 4;
constexpr int looksForAFile = 3;

} // namespace

FileFollower::FileFollower(std::string file)
    : m_name(std::move(file))
{
    open(m_name, m_startsAtEnd);
}

FileFollower::FileFollower(std::string file, int lastIndex)
    : m_name(std::move(file))
    , m_startsAtEnd(false)
    , m_lastKnown(lastIndex)
{
    openBehind(lastIndex);
}

QString FileFollower::description() const
{
    return QStringLiteral("from %1").arg(QDir::toNativeSeparators(QString::fromStdString(m_name)));
}

void FileFollower::fileChanged(const std::string& file)
{
    if (file == m_name)
        return;
    m_name = file;
    m_file.close();
    m_startsAtEnd = true;
    open(m_name, m_startsAtEnd);
}

bool FileFollower::poll(std::string& lines)
{
    if (!m_file.isOpen() && !open(m_name, m_startsAtEnd))
        return false;
    if (readOn(lines))
        return true;
    if (platform::identityOf(m_name) == m_file.identity())
        return false;
    // It was renamed; what its owner wrote between the last read and that comes first.
    return readOn(lines) || openNext();
}

/// Reads one block of whole lines.
/// \return whether there were any.
bool FileFollower::readOn(std::string& lines)
{
    // An owner that takes over cuts off a line without end; all before it stays.
    const std::int64_t size = m_file.size();
    if (size >= 0 && size < m_position)
        m_position = 0;
    std::string block;
    std::size_t end = std::string::npos;
    while (end == std::string::npos && block.size() < longestLine) {
        const std::size_t old = block.size();
        block.resize(old + blockBytes);
        const std::int64_t got = m_file.readAt(m_position + static_cast<std::int64_t>(old),
                                               block.data() + old, blockBytes);
        block.resize(old + static_cast<std::size_t>(std::max<std::int64_t>(got, 0)));
        if (got <= 0)
            break;
        end = block.rfind('\n');
    }
    if (end == std::string::npos)
        return false;
    block.resize(end + 1);
    m_position += static_cast<std::int64_t>(block.size());
    std::replace(block.begin(), block.end(), '\n', '\0');
    const std::size_t before = lines.size();
    lines += block;
    if (m_lastKnown != 0)
        dropKnown(lines, before);
    return true;
}

/// The file may be behind the live buffer, so what was shown from there may still come.
void FileFollower::dropKnown(std::string& lines, std::size_t from)
{
    std::size_t end = from;
    while (end < lines.size() && m_lastKnown != 0) {
        const int index = logging::lineIndex(std::string_view(lines).substr(end));
        // The same number again is the line that was shown, not the next round's 100000.
        if (index != 0 && index != m_lastKnown && logging::isLater(index, m_lastKnown))
            m_lastKnown = 0;
        else
            end = lines.find('\0', end) + 1;
    }
    lines.erase(from, end - from);
}

void FileFollower::openBehind(int index)
{
    platform::NativeFile older;
    for (int number = 0; older.open(nameOf(number), platform::NativeFile::Mode::Read); ++number) {
        // Rotated while this was looking, it is here once more.
        if (older.identity() == m_file.identity())
            continue;
        m_file = std::move(older);
        const auto end = endOfLinesUpTo(index, m_file);
        m_position = end.value_or(0);
        if (end)
            return;
        older = platform::NativeFile();
    }
}

bool FileFollower::openNext()
{
    const platform::FileIdentity read = m_file.identity();
    const auto next = nameAfter(read);
    platform::NativeFile old = std::move(m_file);
    m_file = platform::NativeFile();
    const std::int64_t position = m_position;
    // A rotation in between has moved all names by one: then this is no neighbour.
    if (next && open(*next, false) && nameAfter(read) == next && !(m_file.identity() == read))
        return true;
    m_file = std::move(old);
    m_position = position;
    return false;
}

/// The name of the file that was begun after the wanted one: when that is F.3 now, F.2. The
/// oldest one when the wanted one is gone, so that as little as possible is missed.
std::optional<std::string> FileFollower::nameAfter(const platform::FileIdentity& wanted) const
{
    // Names move while they are looked at, so "gone" takes more than one look.
    int oldest = 0;
    for (int look = 0; look < looksForAFile; ++look) {
        // Its name could not be looked at for a moment, as happens beside a rename on Windows.
        if (platform::identityOf(m_name) == wanted)
            return std::nullopt;
        const auto [number, last] = findAmongOlder(wanted);
        if (number > 0)
            return nameOf(number - 1);
        oldest = last;
    }
    if (oldest > 0 || platform::identityOf(m_name).isKnown)
        return nameOf(oldest);
    return std::nullopt;
}

/// Which of F.1, F.2 and so on is the wanted file, 0 for none, and which is the last one.
std::pair<int, int> FileFollower::findAmongOlder(const platform::FileIdentity& wanted) const
{
    int last = 0;
    for (int number = 1; number <= last + mostFreeNames; ++number) {
        const platform::FileIdentity found = platform::identityOf(nameOf(number));
        if (found == wanted)
            return {number, number};
        if (found.isKnown)
            last = number;
    }
    return {0, last};
}

std::string FileFollower::nameOf(int number) const
{
    return number == 0 ? m_name : m_name + '.' + std::to_string(number);
}

bool FileFollower::open(const std::string& name, bool atEnd)
{
    if (!m_file.open(name, platform::NativeFile::Mode::Read))
        return false;
    // Only whole lines are shown: the one that is being written is still to come.
    m_position = atEnd ? endOfLastWholeLine(m_file) : 0;
    m_startsAtEnd = false;
    return true;
}

} // namespace vlbase::tool::log

#include "logfollower.h"

#include <algorithm>

namespace vlbase::logreading {
namespace {

constexpr std::size_t bytesAtOnce = 4 * 1024 * 1024;
constexpr std::int64_t bytesToJudge = 64 * 1024;

/// Whether a line begins in the bytes that is one of a log.
bool hasLogLine(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size() - 1);
        if (headOf(bytes.substr(0, end + 1)))
            return true;
        bytes.remove_prefix(end + 1);
    }
    return false;
}

} // namespace

bool LogFollower::looksLikeALog() const
{
    const auto files = m_series.files();
    const LogFile& newest = *files.back();
    const std::int64_t size = newest.size();
    std::string bytes(static_cast<std::size_t>(bytesToJudge), '\0');
    for (const std::int64_t place :
         {std::int64_t{0}, std::max(size - bytesToJudge, std::int64_t{0})}) {
        const std::int64_t got = newest.file().readAt(place, bytes.data(), bytes.size());
        if (got > 0 && hasLogLine(std::string_view(bytes).substr(0, static_cast<std::size_t>(got))))
            return true;
    }
    return size == 0;
}

void LogFollower::startBehind(std::int64_t seconds, int number)
{
    m_behindSeconds = seconds;
    m_behindNumber = number;
}

bool LogFollower::poll(std::string& lines)
{
    const LogSeries::Update update = m_series.update();
    const bool hasGiven = give(lines);
    return hasGiven || update == LogSeries::Update::More;
}

bool LogFollower::give(std::string& lines)
{
    const auto files = m_series.files();
    const auto found = std::find(files.begin(), files.end(), m_file);
    if (found == files.end()) {
        // Written anew, it goes on at its beginning; else with what is there.
        const auto same = std::find_if(files.begin(), files.end(), [this](const auto& file) {
            return m_file && file->identity() == m_file->identity();
        });
        m_file = same == files.end() ? files.front() : *same;
        m_row = 0;
    }
    const std::size_t before = lines.size();
    const IndexView view = m_file->index().view();
    for (; m_row < view.size() && lines.size() - before < bytesAtOnce; ++m_row) {
        const IndexedLine line = view.line(m_row);
        if (isKnown(line))
            continue;
        lines += m_reader.text(m_file, line);
        lines += '\0';
    }
    m_file->forget(m_row);
    if (m_row < view.size())
        return true;
    return goToNextFile() || lines.size() > before;
}

/// Whether it is one of those that are left out at the beginning.
bool LogFollower::isKnown(const IndexedLine& line)
{
    if (m_behindSeconds) {
        const bool isLater =
            line.seconds &&
            (*line.seconds > *m_behindSeconds ||
             (*line.seconds == *m_behindSeconds &&
              (m_behindNumber == 0 ||
               (line.number != m_behindNumber && logging::isLater(line.number, m_behindNumber)))));
        if (!isLater)
            return true;
        m_behindSeconds.reset();
    }
    if (line.seconds) {
        m_lastSeconds = line.seconds;
        if (line.number != 0)
            m_lastNumber = line.number;
    }
    return false;
}

bool LogFollower::goToNextFile()
{
    auto next = m_series.fileAfter(m_file);
    if (!next)
        return false;
    m_file = std::move(next);
    m_row = 0;
    m_series.dropRemoved(m_file.get());
    return true;
}

} // namespace vlbase::logreading

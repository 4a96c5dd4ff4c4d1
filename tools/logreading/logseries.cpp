#include "logseries.h"

#include <algorithm>
#include <utility>

namespace vlbase::logreading {
namespace {

// A rotation under way leaves one name free, one that was cut off before it another one.
constexpr int mostFreeNames = 4;
constexpr std::int64_t blockBytes = 64 * 1024;

using tool::platform::identityOf;

/// The place behind which the file has \a lines whole lines; 0 when it has fewer, and then
/// \a lines is what is missing.
std::int64_t placeBeforeLast(const LogFile& file, std::int64_t& lines)
{
    std::int64_t end = file.size();
    std::string block(static_cast<std::size_t>(blockBytes), '\0');
    std::int64_t wanted = lines + 1; // the line feed before the first of them
    while (end > 0) {
        const std::int64_t size = std::min(blockBytes, end);
        if (file.file().readAt(end - size, block.data(), static_cast<std::size_t>(size)) != size)
            return file.size();
        for (std::int64_t i = size - 1; i >= 0; --i) {
            if (block[static_cast<std::size_t>(i)] == '\n' && --wanted == 0) {
                lines = 0;
                return end - size + i + 1;
            }
        }
        end -= size;
    }
    lines = wanted - 1;
    return 0;
}

} // namespace

LogView::Line LogView::line(std::int64_t row) const
{
    const auto behind = std::upper_bound(
        m_parts.begin(), m_parts.end(), row,
        [](std::int64_t wanted, const Part& part) { return wanted < part.firstRow; });
    const Part& part = *std::prev(behind);
    return {&part, part.index.line(row - part.firstRow)};
}

LinePlace LogView::placeOf(std::int64_t row) const
{
    const Line found = line(row);
    return {found.part->file->identity(), found.line.begin};
}

std::int64_t LogView::rowOf(const LinePlace& place) const
{
    for (const Part& part : m_parts) {
        if (part.file->identity() == place.file) {
            const std::int64_t row = part.index.rowAt(place.offset);
            return row < 0 ? row : part.firstRow + row;
        }
    }
    return -1;
}

void LogView::add(std::shared_ptr<LogFile> file)
{
    IndexView index = file->index().view();
    const std::int64_t rows = index.size();
    if (rows == 0)
        return;
    m_parts.push_back({std::move(file), std::move(index), m_rows});
    m_rows += rows;
}

LogSeries::LogSeries(std::string name, Extent extent)
    : m_name(std::move(name))
    , m_extent(extent)
{
}

std::string LogSeries::nameOf(int number) const
{
    return number == 0 ? m_name : m_name + '.' + std::to_string(number);
}

/// The names that are in use, from the newest on.
std::vector<std::string> LogSeries::names() const
{
    std::vector<std::string> found;
    for (int number = 0, free = 0; free <= mostFreeNames; ++number) {
        const std::string name = nameOf(number);
        if (identityOf(name).isKnown) {
            found.push_back(name);
            free = 0;
        } else {
            ++free;
        }
    }
    return found;
}

bool LogSeries::open(QString& reason)
{
    auto newest = LogFile::open(m_name, reason);
    if (!newest)
        return false;
    std::vector<std::shared_ptr<LogFile>> files{newest};
    for (const std::string& name : names()) {
        QString ignored;
        auto file = name == m_name ? nullptr : LogFile::open(name, ignored);
        if (file && !(file->identity() == newest->identity()))
            files.push_back(std::move(file));
    }
    std::reverse(files.begin(), files.end());
    const std::lock_guard lock(m_mutex);
    m_files = std::move(files);
    if (m_extent == Extent::Single) {
        m_strangers.assign(m_files.begin(), std::prev(m_files.end()));
        m_files.erase(m_files.begin(), std::prev(m_files.end()));
    }
    m_reading = 0;
    return true;
}

bool LogSeries::isKnown(const FileIdentity& identity) const
{
    const auto has = [&](const std::shared_ptr<LogFile>& file) {
        return file->identity() == identity;
    };
    return std::any_of(m_files.begin(), m_files.end(), has) ||
           std::any_of(m_strangers.begin(), m_strangers.end(), has);
}

void LogSeries::startAtEnd(std::int64_t lines)
{
    // The older files are looked into only as far as the lines are not enough.
    std::size_t first = m_files.size();
    while (first > 0) {
        --first;
        m_files[first]->startAt(placeBeforeLast(*m_files[first], lines));
        if (lines == 0)
            break;
    }
    const std::lock_guard lock(m_mutex);
    const auto kept = m_files.begin() + static_cast<std::ptrdiff_t>(first);
    m_strangers.insert(m_strangers.end(), m_files.begin(), kept);
    m_files.erase(m_files.begin(), kept);
}

LogSeries::Update LogSeries::update()
{
    const Update result = readOn();
    if (result != Update::Unchanged)
        return result;
    return addNewFiles() ? Update::More : Update::Unchanged;
}

LogSeries::Update LogSeries::readOn()
{
    while (m_reading < m_files.size()) {
        switch (m_files[m_reading]->update()) {
        case LogFile::Update::More:
            return Update::More;
        case LogFile::Update::Grown:
            return Update::Changed;
        case LogFile::Update::Failed:
            m_errorText = m_files[m_reading]->errorText();
            return Update::Failed;
        case LogFile::Update::Replaced: {
            auto again = m_files[m_reading]->reopened();
            if (!again)
                return Update::Failed;
            const std::lock_guard lock(m_mutex);
            m_files[m_reading] = std::move(again);
            return Update::Reset;
        }
        case LogFile::Update::Unchanged:
            if (m_reading + 1 == m_files.size())
                return Update::Unchanged;
            m_files[m_reading]->takeHalfLine(); // its owner has gone on to the next one
            ++m_reading;
        }
    }
    return Update::Unchanged;
}

/// Files that were begun after the newest one that is known, the newest first.
std::vector<std::shared_ptr<LogFile>> LogSeries::newFiles() const
{
    std::vector<std::shared_ptr<LogFile>> found;
    for (const std::string& name : names()) {
        QString reason;
        auto file = LogFile::open(name, reason);
        if (!file || isKnown(file->identity()))
            break;
        found.push_back(std::move(file));
    }
    return found;
}

bool LogSeries::addNewFiles()
{
    const FileIdentity newest = identityOf(m_name);
    if (!newest.isKnown || isKnown(newest))
        return false;
    auto found = newFiles();
    // A rotation in between has moved the names: then it is looked once more, next time.
    const auto again = newFiles();
    const bool isSame =
        std::equal(found.begin(), found.end(), again.begin(), again.end(),
                   [](const auto& a, const auto& b) { return a->identity() == b->identity(); });
    if (found.empty() || !isSame)
        return false;
    // What its owner wrote between the last read and the rename comes first.
    if (m_files.back()->update() != LogFile::Update::Unchanged)
        return true;
    const std::lock_guard lock(m_mutex);
    m_files.insert(m_files.end(), found.rbegin(), found.rend());
    return true;
}

void LogSeries::takeHalfLines()
{
    for (const auto& file : m_files)
        file->takeHalfLine();
}

bool LogSeries::dropRemoved(const LogFile* next)
{
    std::vector<FileIdentity> named;
    for (const std::string& name : names())
        named.push_back(identityOf(name));
    const auto isGone = [&](const std::shared_ptr<LogFile>& file) {
        return std::find(named.begin(), named.end(), file->identity()) == named.end();
    };
    m_strangers.erase(std::remove_if(m_strangers.begin(), m_strangers.end(), isGone),
                      m_strangers.end());
    std::size_t count = 0;
    while (count < m_reading && m_files[count].get() != next && isGone(m_files[count]))
        ++count;
    const std::lock_guard lock(m_mutex);
    m_files.erase(m_files.begin(), m_files.begin() + static_cast<std::ptrdiff_t>(count));
    m_reading -= count;
    return count > 0;
}

LogView LogSeries::view() const
{
    const std::lock_guard lock(m_mutex);
    LogView view;
    for (const auto& file : m_files)
        view.add(file);
    return view;
}

std::vector<std::shared_ptr<LogFile>> LogSeries::files() const
{
    const std::lock_guard lock(m_mutex);
    return m_files;
}

std::shared_ptr<LogFile> LogSeries::fileAfter(const std::shared_ptr<LogFile>& file) const
{
    const auto found = std::find(m_files.begin(), m_files.end(), file);
    const auto place = static_cast<std::size_t>(std::distance(m_files.begin(), found));
    return place < m_reading ? m_files[place + 1] : nullptr;
}

std::int64_t LogSeries::indexedBytes() const
{
    const std::lock_guard lock(m_mutex);
    std::int64_t bytes = 0;
    for (const auto& file : m_files)
        bytes += file->indexedBytes();
    return bytes;
}

std::int64_t LogSeries::totalBytes() const
{
    const std::lock_guard lock(m_mutex);
    std::int64_t bytes = 0;
    for (const auto& file : m_files)
        bytes += file->size();
    return bytes;
}

} // namespace vlbase::logreading

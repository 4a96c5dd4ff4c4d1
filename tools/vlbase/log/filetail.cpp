#include "filetail.h"

#include <VLBase/logging/linetext.h>
#include <VLBase/logging/logline.h>
#include <VLBase/logging/ownernotice.h>

#include <algorithm>
#include <string_view>

namespace vlbase::tool::log {
namespace {

constexpr std::int64_t blockBytes = 64 * 1024;

// Not the whole of a huge file that is no log: lines without a number are rare.
constexpr std::int64_t searchBytes = 64 * 1024 * 1024;
constexpr std::size_t mostLinesAfter = 10000;

/// Where the last line ends that ends before `end`.
template <typename File> std::int64_t findLineEnd(const File& file, std::int64_t end)
{
    std::string block(static_cast<std::size_t>(blockBytes), '\0');
    while (end > 0) {
        const std::int64_t size = std::min(blockBytes, end);
        const std::int64_t got =
            file.readAt(end - size, block.data(), static_cast<std::size_t>(size));
        if (got != size)
            return end; // Not readable: nothing is known to be torn.
        const std::size_t found =
            std::string_view(block.data(), static_cast<std::size_t>(size)).rfind('\n');
        if (found != std::string_view::npos)
            return end - size + static_cast<std::int64_t>(found) + 1;
        end -= size;
    }
    return 0;
}

template <typename File> std::int64_t findLastLineEnd(const File& file)
{
    return findLineEnd(file, std::max<std::int64_t>(file.size(), 0));
}

constexpr std::string_view noticeBegin = "------\t";

std::string headAt(const GrowingFile& file, std::int64_t place)
{
    std::string head(noticeBegin.size(), '\0');
    const std::int64_t got = file.readAt(place, head.data(), head.size());
    head.resize(static_cast<std::size_t>(std::max<std::int64_t>(got, 0)));
    return head;
}

bool beginsAsLine(std::string_view head)
{
    return head == noticeBegin || logging::lineIndex(head) != 0;
}

bool isCutInBegin(std::string_view head)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return head.size() < noticeBegin.size() && (noticeBegin.substr(0, head.size()) == head ||
                                                std::all_of(head.begin(), head.end(), isDigit));
}

/// Gives the file's whole lines and where they begin, from the last to the first, until
/// `wantsMore` says no.
template <typename File, typename WantsMore>
void readLinesBackwards(const File& file, WantsMore wantsMore)
{
    std::int64_t start = findLastLineEnd(file);
    const std::int64_t limit = start - std::min(start, searchBytes);
    std::string text; // from `start` on, lines not given yet
    while (start > limit) {
        const std::int64_t size = std::min(blockBytes, start);
        std::string block(static_cast<std::size_t>(size), '\0');
        if (file.readAt(start - size, block.data(), block.size()) != size)
            return;
        start -= size;
        text.insert(0, block);
        while (text.size() > 1) {
            const std::size_t before = text.rfind('\n', text.size() - 2);
            if (before == std::string::npos && start > 0)
                break;
            const std::size_t begin = before == std::string::npos ? 0 : before + 1;
            const std::string_view line =
                std::string_view(text).substr(begin, text.size() - 1 - begin);
            if (!wantsMore(line, start + static_cast<std::int64_t>(begin)))
                return;
            text.resize(begin);
        }
    }
}

} // namespace

std::int64_t endOfLastWholeLine(const GrowingFile& file)
{
    return findLastLineEnd(file);
}

bool isLogToGoOn(const GrowingFile& file)
{
    const std::int64_t size = file.size();
    const std::int64_t whole = findLastLineEnd(file);
    if (size <= 0)
        return size == 0;
    const std::string rest = headAt(file, whole);
    if (whole == 0)
        return beginsAsLine(rest);
    const bool hasLines =
        beginsAsLine(headAt(file, 0)) || beginsAsLine(headAt(file, findLineEnd(file, whole - 1)));
    return hasLines && (whole == size || beginsAsLine(rest) || isCutInBegin(rest));
}

FileTail readFileTail(const GrowingFile& file)
{
    FileTail tail;
    logging::LogLine parsed;
    readLinesBackwards(file, [&](std::string_view line, std::int64_t) {
        const auto isOther = [&] {
            if (tail.after.size() < mostLinesAfter)
                tail.after.emplace_back(line);
            return true;
        };
        if (const int index = logging::lineIndex(line)) {
            tail.kind = FileTail::Kind::Line;
            tail.index = index;
            tail.line = line;
            return false;
        }
        if (!logging::parseLogLine(line, parsed))
            return isOther();
        const auto notice = logging::parseNotice(parsed);
        if (!notice)
            return isOther();
        const bool begins = notice->kind == logging::OwnerNotice::Kind::LogBegins;
        tail.kind = begins ? FileTail::Kind::LogBegins : FileTail::Kind::Line;
        tail.index = begins ? notice->first : notice->last;
        return false;
    });
    std::reverse(tail.after.begin(), tail.after.end());
    return tail;
}

FileTail readFileTail(FileStore& store, const std::string& name)
{
    for (const std::string& candidate : {name, name + ".1"}) {
        if (!store.exists(candidate))
            continue;
        const auto file = store.open(candidate);
        if (!file)
            continue;
        const FileTail tail = readFileTail(*file);
        if (tail.kind != FileTail::Kind::Unknown)
            return tail;
    }
    return {};
}

std::size_t bytesInFile(const FileTail& tail, std::string_view pending)
{
    std::vector<std::string> lines;
    std::vector<std::size_t> ends;
    std::size_t begun = 0; // lines up to the last one with a number that the file has
    for (std::string_view rest = pending; !rest.empty();) {
        const std::string_view line = logging::takeLine(rest);
        lines.emplace_back();
        logging::appendClean(line, logging::Cleaning::ForFile, lines.back());
        ends.push_back(pending.size() - rest.size());
        if (tail.index != 0 && logging::lineIndex(line) == tail.index && lines.back() == tail.line)
            begun = lines.size();
    }
    // Behind that, as many as are the file's last ones.
    std::size_t count = std::min(tail.after.size(), lines.size() - begun);
    const auto first = lines.begin() + static_cast<std::ptrdiff_t>(begun);
    while (count > 0 && !std::equal(tail.after.end() - static_cast<std::ptrdiff_t>(count),
                                    tail.after.end(), first))
        --count;
    const std::size_t known = begun + count;
    return known == 0 ? 0 : ends[known - 1];
}

} // namespace vlbase::tool::log

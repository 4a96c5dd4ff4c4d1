#include "ownernotice.h"

#include <VLBase/logging/internal/lineindex.h>
#include <VLBase/logging/internal/linetime.h>

#include <charconv>

namespace vlbase::logging {
namespace {

constexpr std::string_view moduleName = "vlbase log own";
constexpr std::string_view lostText = " lost";
constexpr std::string_view beginsText = "log begins";

template <typename Number> std::optional<Number> numberIn(std::string_view text)
{
    Number value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || rest != end)
        return std::nullopt;
    return value;
}

std::string lostFields(const OwnerNotice& notice)
{
    std::string text = std::to_string(notice.count);
    text += notice.count == 1 ? " line" : " lines";
    text += lostText;
    text += '\t';
    text += std::to_string(notice.first) + '-' + std::to_string(notice.last);
    text += "\tnot drained in time, or cut off with their sender";
    return text;
}

} // namespace

std::string noticeLine(const OwnerNotice& notice, const std::string& station)
{
    LineTime time;
    time.update();
    std::string line = "------\t";
    line += time.text();
    line += '\t' + station + '\t';
    line += moduleName;
    switch (notice.kind) {
    case OwnerNotice::Kind::LinesLost:
        line += "\tWarning\t" + lostFields(notice);
        break;
    case OwnerNotice::Kind::LogBegins:
        line += "\tEvent\t";
        line += beginsText;
        line += '\t' + std::to_string(notice.first) + '\t';
        break;
    }
    return line + '\n';
}

std::optional<OwnerNotice> parseNotice(const LogLine& line)
{
    if (line.index != 0 || line.module != moduleName || line.fields.size() != 3)
        return std::nullopt;
    OwnerNotice notice;
    if (line.fields[0] == beginsText) {
        const auto first = numberIn<int>(line.fields[1]);
        if (!first)
            return std::nullopt;
        notice.kind = OwnerNotice::Kind::LogBegins;
        notice.first = *first;
        return notice;
    }
    const std::size_t dash = line.fields[1].find('-');
    const std::size_t blank = line.fields[0].find(' ');
    if (dash == std::string_view::npos || blank == std::string_view::npos)
        return std::nullopt;
    const auto count = numberIn<std::uint64_t>(line.fields[0].substr(0, blank));
    const auto first = numberIn<int>(line.fields[1].substr(0, dash));
    const auto last = numberIn<int>(line.fields[1].substr(dash + 1));
    if (!count || !first || !last)
        return std::nullopt;
    notice.count = *count;
    notice.first = *first;
    notice.last = *last;
    return notice;
}

OwnerNotice noticeOfBegin()
{
    OwnerNotice notice;
    notice.kind = OwnerNotice::Kind::LogBegins;
    notice.first = firstNumber;
    return notice;
}

OwnerNotice noticeOfLost(std::uint64_t count, int last)
{
    const std::uint64_t lastSlot = *NumberSlots(last).begin();
    const std::uint64_t slot =
        (lastSlot + numberPeriod - (count - 1) % numberPeriod) % numberPeriod;
    OwnerNotice notice;
    notice.count = count;
    notice.first = slot == 0 ? firstNumber : firstNumber + static_cast<std::int32_t>(slot) - 1;
    notice.last = last;
    return notice;
}

} // namespace vlbase::logging

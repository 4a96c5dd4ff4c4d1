#include "linefields.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vlbase::logreading {
namespace {

constexpr std::string_view noNumber = "------\t";

} // namespace

std::string_view withoutLineEnd(std::string_view text)
{
    if (!text.empty() && text.back() == '\n') {
        text.remove_suffix(1);
        if (!text.empty() && text.back() == '\r')
            text.remove_suffix(1);
    }
    return text;
}

LineFields fieldsOf(std::string_view text, logging::LogLine& scratch)
{
    text = withoutLineEnd(text);
    LineFields fields;
    if (!logging::parseLogLine(text, scratch)) {
        fields.event[2] = text;
        return fields;
    }
    fields.isLogLine = true;
    fields.number = scratch.index;
    fields.seconds = scratch.seconds;
    fields.station = scratch.station;
    fields.module = scratch.module;
    fields.level = scratch.level;
    const std::size_t count = std::min(scratch.fields.size(), fields.event.size());
    std::copy_n(scratch.fields.begin(), count, fields.event.begin());
    if (count == fields.event.size()) {
        const auto start = static_cast<std::size_t>(fields.event[2].data() - text.data());
        fields.event[2] = text.substr(start);
    }
    return fields;
}

std::optional<LineHead> headOf(std::string_view text)
{
    text = withoutLineEnd(text);
    LineHead head;
    head.number = logging::lineIndex(text);
    if (head.number == 0 && text.substr(0, noNumber.size()) != noNumber)
        return std::nullopt;
    const char* const end = text.data() + text.size();
    const char* place = text.data() + noNumber.size();
    const auto nextTab = [&]() -> const char* {
        const auto size = static_cast<std::size_t>(end - place);
        return size == 0 ? nullptr : static_cast<const char*>(std::memchr(place, '\t', size));
    };
    const auto between = [](const char* from, const char* to) {
        return std::string_view(from, static_cast<std::size_t>(to - from));
    };
    const char* sender = nullptr;
    for (int field = 1; field <= 4; ++field) { // time, zone, station, module
        const char* const tab = nextTab();
        if (tab == nullptr)
            return std::nullopt;
        if (field == 1)
            head.time = between(place, tab);
        place = tab + 1;
        if (field == 2)
            sender = place;
    }
    const char* const tab = nextTab();
    head.sender = between(sender, tab == nullptr ? end : tab);
    return head;
}

} // namespace vlbase::logreading

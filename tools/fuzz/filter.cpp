// Texts of any kind through the filter language, and what they make of lines of any bytes.

#include "tools/logreading/filter.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace vlbase::logreading;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// What is known before a line is read, and what is looked for in it, agree with the line.
void check(const Filter& filter, std::string_view text)
{
    vlbase::logging::LogLine scratch;
    const LineFields line = fieldsOf(text, scratch);
    const auto head = headOf(text);
    require(head.has_value() == line.isLogLine);
    const bool holds = filter.holds(line);
    FilterPlan plan(filter);
    plan.addSender({line.station, line.module, line.level});
    const Truth truth = plan.judge(0, line.number, line.seconds);
    require(truth == Truth::Maybe || (truth == Truth::Yes) == holds);
    if (const TextFinder* const finder = filter.required())
        require(!holds || finder->isIn(text));
    require((filter && Filter()).holds(line) == holds);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const QString text = QString::fromUtf8(input.data(), static_cast<qsizetype>(end));
    FilterFault fault;
    const auto filter = Filter::parse(text, fault);
    if (filter)
        check(*filter, input.substr(std::min(end + 1, input.size())));
    else
        require(fault.column >= 1 && fault.column <= text.size() + 1 && !fault.expected.isEmpty());
    return 0;
}

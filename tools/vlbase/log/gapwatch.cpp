#include "gapwatch.h"

#include <utility>

namespace vlbase::tool::log {
namespace {

// A larger step is none forward: the line was injected, or the log has begun anew.
constexpr std::int64_t largestGap = 450000;

} // namespace

std::optional<OwnNotice> GapWatch::lookAt(const LogLine& line)
{
    if (line.index == 0) {
        const auto notice = parseNotice(line);
        if (notice)
            m_last = notice->kind == OwnNotice::Kind::LogBegins ? 0 : notice->last;
        return std::nullopt;
    }
    const int before = std::exchange(m_last, line.index);
    if (before == 0)
        return std::nullopt;
    const std::int64_t missing = linesBetween(before, line.index);
    if (missing == 0 || missing > largestGap)
        return std::nullopt;
    return noticeOfLost(static_cast<std::uint64_t>(missing), previousIndex(line.index));
}

} // namespace vlbase::tool::log

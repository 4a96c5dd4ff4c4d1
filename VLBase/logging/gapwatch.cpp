#include "gapwatch.h"

namespace vlbase::logging {

std::optional<OwnerNotice> GapWatch::lookAt(const LogLine& line)
{
    if (line.index == 0) {
        const auto notice = parseNotice(line);
        if (notice)
            m_last = notice->kind == OwnerNotice::Kind::LogBegins ? 0 : notice->last;
        return std::nullopt;
    }
    const std::int64_t missing = missingBefore(line.index);
    if (missing == 0)
        return std::nullopt;
    return noticeOfLost(static_cast<std::uint64_t>(missing), previousIndex(line.index));
}

std::int64_t GapWatch::missingBefore(int index)
{
    const bool follows = m_last == 0 || isLater(index, m_last);
    const std::int64_t missing = m_last == 0 || !follows ? 0 : linesBetween(m_last, index);
    // One that does not was put in as it is; two such in a row are of a log that began anew.
    const bool beginsAnew = !follows && m_aside != 0 && linesBetween(m_aside, index) == 0;
    m_aside = follows || beginsAnew ? 0 : index;
    if (follows || beginsAnew)
        m_last = index;
    return missing;
}

} // namespace vlbase::logging

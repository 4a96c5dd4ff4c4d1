#pragma once

#include "logline.h"
#include "ownnotice.h"

#include <optional>

namespace vlbase::tool::log {

/// Watches the numbers of the lines that a viewer gets, for those that are missing.
class GapWatch
{
public:
    /// Lines missing right before this one; nothing when it follows the last one. A notice of
    /// the owner's in the file accounts for the lines that it names.
    std::optional<OwnNotice> lookAt(const LogLine& line);

    /// The same for a line's number alone: how many are missing before it.
    std::int64_t missingBefore(int index);

    /// The number that the next one should follow; 0 when nothing is known yet.
    int last() const { return m_last; }

private:
    int m_last = 0;
    int m_aside = 0; // a number that did not follow the last one, when that was the latest
};

} // namespace vlbase::tool::log

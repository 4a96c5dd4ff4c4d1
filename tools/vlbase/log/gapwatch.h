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

private:
    int m_last = 0; // 0: nothing is known yet
};

} // namespace vlbase::tool::log

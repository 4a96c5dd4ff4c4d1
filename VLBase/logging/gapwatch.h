#pragma once

#include <VLBase/logging/logline.h>
#include <VLBase/logging/ownernotice.h>
#include <VLBase/vlbase_export.h>

#include <cstdint>
#include <optional>

namespace vlbase::logging {

/// Watches the numbers of the lines that a viewer gets, live or from an owner's file, for those
/// that are missing. The first line that it sees is where it begins.
class VLBASE_EXPORT GapWatch
{
public:
    /// Lines missing right before this one; nothing when it follows the last one. A notice of
    /// the owner's in the file accounts for the lines that it names.
    std::optional<OwnerNotice> lookAt(const LogLine& line);

    /// The same for a line's number alone: how many are missing before it.
    std::int64_t missingBefore(int index);

    /// The number that the next one should follow; 0 when nothing is known yet.
    int last() const { return m_last; }

private:
    int m_last = 0;
    int m_aside = 0; // a number that did not follow the last one, when that was the latest
};

} // namespace vlbase::logging

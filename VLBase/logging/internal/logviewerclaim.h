#pragma once

#include <VLBase/platform/namedclaim.h>
#include <VLBase/vlbase_export.h>

namespace vlbase::logging {

/// The right to empty the viewers' half, which one viewer of a user has at a time.
///
/// The contract between the programs does not know it: it keeps our own viewers from taking
/// lines from each other. It is free again when its holder lets go or ends, however it ends.
class VLBASE_EXPORT LogViewerClaim
{
public:
    /// Takes the claim; false while another object, here or in another process, has it.
    bool take();
    bool isHeld() const;
    void release();

    /// Whether any viewer has the claim now.
    static bool isTaken();

private:
    platform::NamedClaim m_claim;
};

} // namespace vlbase::logging

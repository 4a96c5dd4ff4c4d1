#pragma once

#include <VLBase/vlbase_export.h>

#include <memory>

namespace vlbase::logging {

/// The right to empty the viewers' half of the log, which one viewer of a user has at a time.
///
/// `CLiveLogReader` takes lines from all other readers. A viewer that first takes the claim, as
/// the viewers of this library do, knows that no other one of them is there; without it, it reads
/// the owner's file. The claim is free again when its holder lets go or ends, however it ends.
///
/// Nothing here throws for a reason of the system. One object is used by one thread at a time.
class VLBASE_EXPORT ViewerClaim
{
public:
    ViewerClaim();
    ~ViewerClaim();
    ViewerClaim(ViewerClaim&& other) noexcept;
    ViewerClaim& operator=(ViewerClaim&& other) noexcept;

    /// Takes the claim on the log that the process takes part in; false while another object,
    /// here or in another process, has it. True when held already.
    bool take();

private:
    class Claim;

    std::unique_ptr<Claim> m_claim; // null while it is not held
};

} // namespace vlbase::logging

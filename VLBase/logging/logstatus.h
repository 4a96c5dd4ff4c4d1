#pragma once

#include <VLBase/vlbase_export.h>

#include <cstdint>
#include <string>

namespace vlbase::logging {

/// What the shared log looks like from outside, at a glance.
struct LogStatus
{
    enum class Presence {
        Absent,  ///< nobody is attached
        Refused, ///< something has its name that is not a log or is damaged; see `reason`
        Present
    };

    Presence presence = Presence::Absent;
    std::string reason;

    std::int32_t bufferSize = 0; ///< bytes of each half
    std::int32_t writers = 0;    ///< counts as the header has them: killed users stay in them
    std::int32_t owners = 0;
    std::int32_t readers = 0;
    std::int32_t fill[2] = {0, 0}; ///< bytes in the viewers' half and in the owner's
    std::int32_t nextIndex = 0;
    std::string fileName; ///< as published, UTF-8
    bool acceptsDataBlocks = false;

    bool ownerAlive = false;  ///< an owner of this library is alive
    bool viewerAlive = false; ///< a viewer has the claim
    bool lockHeld = false;    ///< somebody was in the log at the moment of looking

    bool hasReserve = false;         ///< the memory beside the log is there
    std::uint64_t reserveBytes = 0;  ///< its room for lines
    std::uint64_t stagedBytes = 0;   ///< lines drained and not yet known to be in the file
    std::uint64_t linesNumbered = 0; ///< numbers used up since the log was made

    /// Whether its lines reach a file: an owner is alive, be it one of a foreign program, which
    /// has no claim that could tell its death.
    bool hasOwner() const
    {
        return presence == Presence::Present && owners > 0 && (ownerAlive || !hasReserve);
    }
};

/// Looks at the log without joining it: takes no lock, creates and changes nothing. The values
/// are read one after another, so under load they need not fit together.
VLBASE_EXPORT LogStatus peekLog();

} // namespace vlbase::logging

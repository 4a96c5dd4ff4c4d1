#pragma once

namespace vlbase::tool {

/// What a verb tells its caller. Help texts list these numbers, so they never change.
enum ExitStatus {
    Success = 0,
    Failure = 1,
    WrongUse = 2,
    NoOwner = 3,
    OwnerBusy = 4,
};

} // namespace vlbase::tool

#pragma once

namespace vlbase::platform {

/// Ends a process at once, with exit code 0 where the caller may choose it.
bool terminateProcess(int processId);

} // namespace vlbase::platform

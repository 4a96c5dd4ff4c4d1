#pragma once

#include <cstdint>
#include <string>

namespace vlbase::platform {

/// Opens a file, a folder or an address with the program that the user has chosen for its kind.
/// On Linux `xdg-open` does; it is given a second to say that there is no such program.
/// \return as ShellExecute's: greater than 32 on success, otherwise what was wrong. Among the
///         latter are 2 for a file and 3 for a folder that is not there, 5 for one that may not be
///         looked at, and 31 for a kind that no program is chosen for.
std::int64_t openForUser(const std::string& target);

} // namespace vlbase::platform

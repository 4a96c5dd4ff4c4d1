#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vlbase::platform {

/// The running processes in the system's order, on Linux that of their identifiers.
/// \param room how many Windows shall tell of at most; Linux tells of all
/// \return none on failure.
std::vector<int> processIds(std::size_t room);

/// The file name of the program that a process runs, without its folder, in UTF-8. Of a script it
/// is the interpreter. Empty when it cannot be found out, as for a process that has just ended.
std::string programName(int processId);

} // namespace vlbase::platform

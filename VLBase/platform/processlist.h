#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct _PROCESS_INFORMATION;

namespace vlbase::platform {

/// The running processes in the system's order, on Linux that of their identifiers.
/// \param room how many Windows shall tell of at most; Linux tells of all
/// \return none on failure.
std::vector<int> processIds(std::size_t room);

/// The file name of the program that a process runs, without its folder, in UTF-8. Of a script it
/// is the interpreter. Empty when it cannot be found out, as for a process that has just ended.
std::string programName(int processId);

/// Whether two file names of programs are the same but for the case of letters.
bool isSameProgram(const std::string& one, const std::string& other);

/// The identifier of the process in a record that is laid out as Windows does.
int processIdOf(const _PROCESS_INFORMATION& process);

} // namespace vlbase::platform

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

struct _PROCESS_INFORMATION;

namespace vlbase::platform {

/// The system's identifier of the calling thread.
int currentThreadId();

/// Sleeps until the time is over or something queued for the thread has run meanwhile.
/// \a milliseconds of -1 waits for the latter only.
void alertableSleep(int milliseconds);

// Identifiers of 0 and below name no process here.

/// Ends a process at once, with exit code 0 where the caller may choose it. False for one that has
/// ended already, even if the system still keeps its entry.
bool terminateProcess(int processId);

/// Whether a process has nothing to do: on Windows one that waits for its user's input, or begins
/// to within 50 ms; on Linux one that sleeps for 50 ms. True also for one that cannot be looked at.
bool isProcessIdle(int processId);

/// Puts all threads of this process before those of ordinary programs.
bool raisePriority();

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

/// Starts a console program of which the user sees nothing, and leaves it to itself. Texts are
/// UTF-8.
///
/// Windows has one command line, of the program, a blank and the arguments. On Linux the program
/// is a path, or a name to be looked for in PATH, which may stand between double quotes; the
/// arguments are taken apart at blanks, those between double quotes stay together, and there is
/// no shell.
/// \return the identifier of its process.
std::optional<int> startHiddenProgram(const std::string& program, const std::string& arguments);

} // namespace vlbase::platform

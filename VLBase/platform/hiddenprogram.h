#pragma once

#include <optional>
#include <string>

namespace vlbase::platform {

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

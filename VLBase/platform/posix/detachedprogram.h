#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vlbase::platform {

/// Starts a program that is no child of this process: in a session of its own, without a terminal,
/// with nothing behind its standard streams and no descriptor of this process.
/// \param words its path, or its name to be looked for in PATH, and its arguments
/// \param output a descriptor that becomes its standard output; none below 0
/// \return the identifier of its process.
std::optional<int> startDetachedProgram(std::vector<std::string> words, int output = -1);

} // namespace vlbase::platform

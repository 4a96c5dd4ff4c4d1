#pragma once

#include <string>

namespace vlbase::platform {

// Paths are UTF-8, and empty on failure.

/// Where the system keeps its programs.
std::string systemDirectory();

/// Ends with a separator.
std::string temporaryDirectory();

/// The environment variable that names the user's own directory.
const char* userDirectoryVariable();

} // namespace vlbase::platform

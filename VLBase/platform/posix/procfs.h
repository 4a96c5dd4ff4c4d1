#pragma once

#include <vector>

namespace vlbase::platform {

/// The entries of a folder of /proc that are numbers, in ascending order; none on failure.
std::vector<int> numbersInFolder(const char* path);

} // namespace vlbase::platform

#pragma once

#include <cstdint>
#include <string>

namespace vlbase::platform {

/// \a path is UTF-8. Returns a handle, 0 on failure.
std::uint64_t loadLibrary(const std::string& path);

/// False for a handle that is not loaded (any more).
bool freeLibrary(std::uint64_t module);

/// Null when the library is not loaded or has no function of that name.
int (*findFunction(std::uint64_t module, const std::string& name))();

} // namespace vlbase::platform

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace vlbase::platform {

// Texts and paths are UTF-8, and empty on failure.

std::string computerName();

/// The account that this process acts for.
std::string loginName();

/// The identifier of an account of this machine in the notation "S-1-...".
std::string securityIdentifier(const std::string& account);

/// Where the system keeps its programs.
std::string systemDirectory();

/// Ends with a separator.
std::string temporaryDirectory();

/// The environment variable that names the user's own directory.
const char* userDirectoryVariable();

struct UniqueId
{
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::array<std::uint8_t, 8> data4;
};

/// A new globally unique identifier (version 4, random); none on failure.
std::optional<UniqueId> createUniqueId();

enum class SystemEnd { PowerOff, Restart };

/// Asks the system to end, two seconds later; whatever runs then has no say in it.
/// \return false, without the two seconds, when this process may not ask for it; false also when
///         the system does not begin to end.
bool endSystem(SystemEnd end);

} // namespace vlbase::platform

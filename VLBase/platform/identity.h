#pragma once

#include <string>

namespace vlbase::platform {

// Texts are UTF-8, and empty on failure.

std::string computerName();

/// The account that this process acts for.
std::string loginName();

/// The identifier of an account of this machine in the notation "S-1-...".
std::string securityIdentifier(const std::string& account);

} // namespace vlbase::platform

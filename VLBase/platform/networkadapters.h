#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vlbase::platform {

/// Starts what sockets need of the system, if anything, for as long as the process lives.
void startNetwork();

struct NetworkAdapter
{
    std::string hardwareAddress; ///< "00-1A-2B-3C-4D-5E"; empty for one that has none
    std::string address;         ///< its first IPv4 address; "0.0.0.0" for one that has none
};

/// All adapters save loopback, in the system's order. Nothing when the system does not tell, whose
/// code says why.
std::optional<std::vector<NetworkAdapter>> networkAdapters();

/// Upper-case pairs of digits, joined by "-".
std::string hardwareAddressText(const unsigned char* bytes, std::size_t size);

} // namespace vlbase::platform

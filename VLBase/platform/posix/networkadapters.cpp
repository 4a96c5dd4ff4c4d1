#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/networkadapters.h>

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <memory>
#include <net/if.h>
#include <sys/socket.h>

namespace vlbase::platform {

namespace {

/// The address of one of an adapter's aliases ("eth0:1") belongs to the adapter.
std::string adapterName(const ifaddrs& entry)
{
    const std::string label = entry.ifa_name;
    return label.substr(0, label.find(':'));
}

bool isOf(const ifaddrs& entry, sa_family_t family)
{
    return (entry.ifa_flags & IFF_LOOPBACK) == 0 && entry.ifa_addr != nullptr &&
           entry.ifa_addr->sa_family == family;
}

std::string hardwareAddressOf(const ifaddrs& entry)
{
    // The C library leaves room behind the structure for longer addresses than its 8 bytes.
    unsigned char length = 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(entry.ifa_addr);
    std::memcpy(&length, bytes + offsetof(sockaddr_ll, sll_halen), sizeof length);
    return hardwareAddressText(bytes + offsetof(sockaddr_ll, sll_addr), length);
}

std::string addressOf(const ifaddrs& entry)
{
    sockaddr_in address{};
    std::memcpy(&address, entry.ifa_addr, sizeof address);
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
    return text.data();
}

} // namespace

void startNetwork() {}

/// The system lists all adapters first, each with its hardware address, and then their addresses.
std::optional<std::vector<NetworkAdapter>> networkAdapters()
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        setLastError(static_cast<std::uint32_t>(errno));
        return std::nullopt;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> list(first, &::freeifaddrs);

    std::vector<std::string> names;
    std::vector<NetworkAdapter> adapters;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if (isOf(*entry, AF_PACKET)) {
            names.push_back(adapterName(*entry));
            adapters.push_back({hardwareAddressOf(*entry), {}});
        } else if (isOf(*entry, AF_INET)) {
            const auto name = std::find(names.begin(), names.end(), adapterName(*entry));
            if (name == names.end())
                continue;
            std::string& address = adapters[static_cast<std::size_t>(name - names.begin())].address;
            if (address.empty())
                address = addressOf(*entry);
        }
    }
    for (NetworkAdapter& adapter : adapters) {
        if (adapter.address.empty())
            adapter.address = "0.0.0.0";
    }
    return adapters;
}

} // namespace vlbase::platform

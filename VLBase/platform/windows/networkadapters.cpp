#include "windowssockets.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/networkadapters.h>

#include <algorithm>

// The other needs these before it.
// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <iphlpapi.h>
// clang-format on

namespace vlbase::platform {

namespace {

/// The list is one block, whose entries point at each other.
using Block = std::vector<IP_ADAPTER_INFO>;

std::optional<Block> adapterTable()
{
    ULONG size = sizeof(IP_ADAPTER_INFO);
    // It may grow between two calls.
    for (int attempt = 0; attempt < 5; ++attempt) {
        Block table(size / sizeof(IP_ADAPTER_INFO) + 1);
        size = static_cast<ULONG>(table.size() * sizeof(IP_ADAPTER_INFO));
        const ULONG code = ::GetAdaptersInfo(table.data(), &size);
        if (code == ERROR_SUCCESS)
            return table;
        if (code == ERROR_NO_DATA)
            return Block();
        setLastError(code);
        if (code != ERROR_BUFFER_OVERFLOW)
            break;
    }
    return std::nullopt;
}

} // namespace

void startNetwork()
{
    // Never destroyed, because static destructors may still need it.
    static const WindowsSockets& sockets = *new WindowsSockets;
    static_cast<void>(sockets);
}

std::optional<std::vector<NetworkAdapter>> networkAdapters()
{
    const std::optional<Block> table = adapterTable();
    if (!table)
        return std::nullopt;
    std::vector<NetworkAdapter> adapters;
    for (const IP_ADAPTER_INFO* entry = table->data(); entry != nullptr; entry = entry->Next) {
        if (entry->Type == MIB_IF_TYPE_LOOPBACK)
            continue;
        const UINT length = std::min<UINT>(entry->AddressLength, MAX_ADAPTER_ADDRESS_LENGTH);
        const std::string address = &entry->IpAddressList.IpAddress.String[0];
        adapters.push_back({hardwareAddressText(&entry->Address[0], length),
                            address.empty() ? "0.0.0.0" : address});
    }
    return adapters;
}

} // namespace vlbase::platform

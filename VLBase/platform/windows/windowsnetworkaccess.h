#pragma once

#include "windowssockets.h"

#include <VLBase/platform/echo.h>

// The other needs these before it.
// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <ws2tcpip.h>
#include <iphlpapi.h>
#include <icmpapi.h>
// clang-format on

namespace vlbase::platform {

/// The ICMP interface of Windows, whose functions are looked up once. Any thread.
class WindowsNetworkAccess
{
public:
    WindowsNetworkAccess();

    EchoAnswer ping(const EchoRequest& request) const;

private:
    EchoAnswer ping4(const EchoRequest& request) const;
    EchoAnswer ping6(const EchoRequest& request) const;

    WindowsSockets m_sockets;
    decltype(&::IcmpSendEcho2) m_sendEcho2 = nullptr;
    decltype(&::IcmpCreateFile) m_createFile = nullptr;
    decltype(&::IcmpCloseHandle) m_closeHandle = nullptr;
    decltype(&::Icmp6SendEcho2) m_sendEcho26 = nullptr;
    decltype(&::Icmp6CreateFile) m_createFile6 = nullptr;
};

} // namespace vlbase::platform

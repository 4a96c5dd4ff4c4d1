#include "windowsnetworkaccess.h"

#include "utf16.h"

#include <VLBase/platform/dynamiclibrary.h>
#include <VLBase/platform/lasterror.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

namespace vlbase::platform {

namespace {

/// Room for replies; where a request needs more, the system says "buffer too small".
using ReplyBuffer = std::array<unsigned char, 8232>;

/// The reply record for IPv6, which not every header has.
struct Icmp6EchoReply
{
    unsigned char address[28]; // port, flow, address and scope, and two bytes of padding
    ULONG Status;
    unsigned int RoundTripTime;
};

template <typename Function> void look(std::uint64_t library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(
        reinterpret_cast<void*>(findFunction(library, std::string(name))));
}

/// Closes what IcmpCreateFile made and leaves the last error code as it was.
struct CloseIcmp
{
    using pointer = HANDLE;
    decltype(&::IcmpCloseHandle) close;
    void operator()(HANDLE handle) const
    {
        const std::uint32_t error = lastError();
        close(handle);
        setLastError(error);
    }
};
using IcmpHandle = std::unique_ptr<HANDLE, CloseIcmp>;

/// What the system has no record for it tells as its last error.
template <typename Record> EchoAnswer answerOf(DWORD replies, const ReplyBuffer& buffer)
{
    Record record{};
    std::memcpy(&record, buffer.data(), sizeof record);
    EchoAnswer answer;
    answer.replies = replies;
    answer.status = EchoStatus{record.Status};
    if (replies > 0)
        answer.roundTrip = std::chrono::milliseconds(record.RoundTripTime);
    else if (record.Status == 0)
        answer.status = EchoStatus{lastError()};
    return answer;
}

DWORD limitOf(const EchoRequest& request)
{
    constexpr std::chrono::milliseconds::rep most = std::numeric_limits<int>::max();
    return static_cast<DWORD>(std::clamp<decltype(most)>(request.limit.count(), 0, most));
}

EchoAnswer failed(EchoStatus status)
{
    EchoAnswer answer;
    answer.status = status;
    return answer;
}

} // namespace

WindowsNetworkAccess::WindowsNetworkAccess()
{
    std::uint64_t library = loadLibrary("iphlpapi.dll");
    if (library == 0)
        library = loadLibrary("icmp.dll");
    look(library, "IcmpSendEcho2", m_sendEcho2);
    look(library, "IcmpCreateFile", m_createFile);
    look(library, "IcmpCloseHandle", m_closeHandle);
    look(library, "Icmp6SendEcho2", m_sendEcho26);
    look(library, "Icmp6CreateFile", m_createFile6);
}

EchoAnswer WindowsNetworkAccess::ping(const EchoRequest& request) const
{
    return request.version == IpVersion::V4 ? ping4(request) : ping6(request);
}

EchoAnswer WindowsNetworkAccess::ping4(const EchoRequest& request) const
{
    if (m_sendEcho2 == nullptr || m_createFile == nullptr || m_closeHandle == nullptr)
        return failed(EchoStatus::NoResources);
    IN_ADDR address{};
    if (::InetPtonW(AF_INET, toUtf16(request.address).c_str(), &address) != 1)
        return failed(EchoStatus::InvalidAddress);
    const HANDLE opened = m_createFile();
    if (opened == INVALID_HANDLE_VALUE)
        return failed(EchoStatus::NoResources);
    const IcmpHandle handle(opened, CloseIcmp{m_closeHandle});

    std::vector<unsigned char> data(request.size);
    alignas(ICMP_ECHO_REPLY) ReplyBuffer buffer{};
    const DWORD replies =
        m_sendEcho2(handle.get(), nullptr, nullptr, nullptr, address.s_addr, data.data(),
                    request.size, nullptr, buffer.data(), sizeof buffer, limitOf(request));
    EchoAnswer answer = answerOf<ICMP_ECHO_REPLY>(replies, buffer);
    if (replies > 0)
        answer.timeToLive = buffer[offsetof(ICMP_ECHO_REPLY, Options.Ttl)];
    return answer;
}

EchoAnswer WindowsNetworkAccess::ping6(const EchoRequest& request) const
{
    if (m_sendEcho26 == nullptr || m_createFile6 == nullptr || m_closeHandle == nullptr)
        return failed(EchoStatus::NoResources);
    std::wstring text = toUtf16(request.address);
    sockaddr_in6 source{};
    source.sin6_family = AF_INET6;
    sockaddr_in6 address{};
    INT length = sizeof address;
    if (::WSAStringToAddressW(text.data(), AF_INET6, nullptr, reinterpret_cast<sockaddr*>(&address),
                              &length) != 0)
        return failed(EchoStatus::InvalidAddress);
    const HANDLE opened = m_createFile6();
    if (opened == INVALID_HANDLE_VALUE)
        return failed(EchoStatus::NoResources);
    const IcmpHandle handle(opened, CloseIcmp{m_closeHandle});

    std::vector<unsigned char> data(request.size);
    IP_OPTION_INFORMATION options{};
    options.Ttl = 255;
    alignas(Icmp6EchoReply) ReplyBuffer buffer{};
    const DWORD replies =
        m_sendEcho26(handle.get(), nullptr, nullptr, nullptr, &source, &address, data.data(),
                     request.size, &options, buffer.data(), sizeof buffer, limitOf(request));
    return answerOf<Icmp6EchoReply>(replies, buffer);
}

} // namespace vlbase::platform

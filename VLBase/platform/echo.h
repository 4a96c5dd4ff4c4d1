#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace vlbase::platform {

enum class IpVersion { V4, V6 };

/// What became of an echo request, in the numbers of Windows' ICMP interface; others of that
/// interface may come from it too.
enum class EchoStatus : std::uint32_t {
    Success = 0,
    BufferTooSmall = 11001,
    NetworkUnreachable = 11002,
    HostUnreachable = 11003,
    ProtocolUnreachable = 11004,
    PortUnreachable = 11005,
    NoResources = 11006,
    BadOption = 11007,
    HardwareError = 11008,
    PacketTooBig = 11009,
    TimedOut = 11010,
    BadRequest = 11011,
    BadRoute = 11012,
    TtlExpiredInTransit = 11013,
    TtlExpiredReassembling = 11014,
    ParameterProblem = 11015,
    SourceQuench = 11016,
    OptionTooBig = 11017,
    BadDestination = 11018,
    InvalidAddress = 11019,
    GeneralFailure = 11050,
};

struct EchoRequest
{
    IpVersion version = IpVersion::V4;
    std::string address;    ///< as digits; with "%" and its scope behind an IPv6 one that needs it
    std::uint16_t size = 0; ///< bytes of data
    std::chrono::milliseconds limit{0}; ///< below 0 counts as 0: what comes at once
    /// Asked now and then while waiting; once it says yes, waiting ends. May be empty.
    std::function<bool()> isAbandoned;
};

struct EchoAnswer
{
    EchoStatus status = EchoStatus::GeneralFailure;
    /// On Linux 1 on success. On Windows what routers answer instead of the host counts too.
    std::uint32_t replies = 0;
    /// From the sending to the reply's arrival, not to when it was read. Whole milliseconds on
    /// Windows.
    std::chrono::microseconds roundTrip{0};
    std::uint8_t timeToLive = 0; ///< 0 for IPv6
    bool isAbandoned = false;
};

/// Sends one request and waits for its reply. Any thread; many at a time.
///
/// Waiting ends with the limit, whatever else arrives. On Windows it cannot be abandoned.
/// A failure leaves the system's code.
///
/// Where this user may not send requests the status is NoResources. On Linux this takes either
/// a group within net.ipv4.ping_group_range or CAP_NET_RAW.
EchoAnswer sendEcho(const EchoRequest& request);

} // namespace vlbase::platform

#include "echosocket.h"

#include <VLBase/platform/echo.h>
#include <VLBase/platform/lasterror.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <random>
#include <sys/socket.h>

namespace vlbase::platform {

namespace {

using Clock = std::chrono::steady_clock;
using Address = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

/// Null for a text that is no address of that version, or whose scope does not exist.
Address parsed(const EchoRequest& request)
{
    addrinfo wanted{};
    wanted.ai_flags = AI_NUMERICHOST;
    wanted.ai_family = request.version == IpVersion::V4 ? AF_INET : AF_INET6;
    wanted.ai_socktype = SOCK_RAW; // or there were one answer for each type
    addrinfo* found = nullptr;
    if (::getaddrinfo(request.address.c_str(), nullptr, &wanted, &found) != 0)
        found = nullptr;
    return {found, &::freeaddrinfo};
}

IcmpMessage newMessage(const EchoRequest& request)
{
    std::random_device random;
    const std::uint32_t idAndSequence = random();
    return {request.version, static_cast<std::uint16_t>(idAndSequence >> 16),
            static_cast<std::uint16_t>(idAndSequence), random(), request.size};
}

EchoAnswer failed(EchoStatus status)
{
    EchoAnswer answer;
    answer.status = status;
    return answer;
}

/// Waits for news about a request that was sent. What is there once the time is over still counts,
/// but whatever arrives does not lengthen it.
EchoAnswer await(EchoSocket& socket, const IcmpMessage& message, const EchoRequest& request)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::nanoseconds turn = 100ms; // in which somebody is asked for an abandon
    const auto deadline = socket.sent() + std::max(request.limit, 0ms);
    EchoAnswer answer;
    for (;;) {
        const auto left = std::max<std::chrono::nanoseconds>(deadline - Clock::now(), 0ns);
        const bool isReady = socket.wait(std::min(left, turn));
        const auto news = isReady ? socket.receive(message) : std::nullopt;
        if (news) {
            answer.status = news->status;
            if (news->status == EchoStatus::Success) {
                answer.replies = 1;
                answer.timeToLive = request.version == IpVersion::V4 ? news->timeToLive : 0;
                answer.roundTrip =
                    std::chrono::duration_cast<std::chrono::microseconds>(socket.roundTrip());
            }
            return answer;
        }
        answer.isAbandoned = request.isAbandoned && request.isAbandoned();
        if (left == 0ns || answer.isAbandoned)
            break;
    }
    setLastError(Fault::NoAnswer);
    answer.status = EchoStatus::TimedOut;
    return answer;
}

} // namespace

EchoAnswer sendEcho(const EchoRequest& request)
{
    const Address address = parsed(request);
    if (!address) {
        setLastError(Fault::InvalidArgument);
        return failed(EchoStatus::InvalidAddress);
    }
    EchoSocket socket(request.version);
    if (const auto fault = socket.fault())
        return failed(*fault);
    IcmpMessage message = newMessage(request);
    if (const auto fault = socket.send(message, address->ai_addr, address->ai_addrlen))
        return failed(*fault);
    return await(socket, message, request);
}

} // namespace vlbase::platform

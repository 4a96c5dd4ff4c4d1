#include "echosocket.h"

#include "descriptor.h"

#include <VLBase/platform/lasterror.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <linux/errqueue.h>
#include <linux/filter.h>
#include <linux/icmp.h>
#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vlbase::platform {

namespace {

/// Room for a reply and the longest IP header; a longer packet than that is no reply.
constexpr std::size_t headerRoom = 60;

std::uint32_t fail(int code)
{
    const auto number = static_cast<std::uint32_t>(code);
    setLastError(number);
    return number;
}

/// Why the system itself did not send.
EchoStatus statusOfError(int code)
{
    fail(code);
    switch (code) {
    case ENETUNREACH:
    case ENETDOWN:
    case EADDRNOTAVAIL: // no own address of this kind
        return EchoStatus::NetworkUnreachable;
    case EHOSTUNREACH:
    case EHOSTDOWN:
    case EACCES: // a prohibiting route
    case EPERM:  // the packet filter
        return EchoStatus::HostUnreachable;
    case ECONNREFUSED:
        return EchoStatus::PortUnreachable;
    case ENOPROTOOPT:
        return EchoStatus::ProtocolUnreachable;
    case EMSGSIZE:
        return EchoStatus::PacketTooBig;
    case EAGAIN: // longer than what sockets may hold here
    case ENOBUFS:
    case ENOMEM:
        return EchoStatus::NoResources;
    case EINVAL: // a black hole among the routes, too
    case ENODEV:
    case ENXIO:
        return EchoStatus::BadDestination;
    default:
        return EchoStatus::GeneralFailure;
    }
}

/// The system's code for an error message, as its own sockets have it.
int errorOf(EchoStatus status)
{
    switch (status) {
    case EchoStatus::NetworkUnreachable:
        return ENETUNREACH;
    case EchoStatus::ProtocolUnreachable:
        return ENOPROTOOPT;
    case EchoStatus::PortUnreachable:
        return ECONNREFUSED;
    case EchoStatus::PacketTooBig:
        return EMSGSIZE;
    case EchoStatus::ParameterProblem:
        return EPROTO;
    case EchoStatus::SourceQuench:
        return EREMOTEIO;
    default:
        return EHOSTUNREACH;
    }
}

template <typename Value> void setOption(int socket, int level, int name, const Value& value)
{
    // Without one of these an answer is slower or says less, and that is all.
    ::setsockopt(socket, level, name, &value, sizeof value);
}

template <typename Value> Value valueOf(const cmsghdr& part)
{
    Value value{};
    std::memcpy(&value, CMSG_DATA(&part), sizeof value);
    return value;
}

/// A received message and what the system says about it.
struct Received
{
    ssize_t size = -1;
    std::array<unsigned char, 512> about{};
    msghdr header{};

    Received(int socket, std::vector<unsigned char>& buffer, int flags)
    {
        iovec part{buffer.data(), buffer.size()};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = about.data();
        header.msg_controllen = about.size();
        size = ::recvmsg(socket, &header, flags | MSG_DONTWAIT);
        header.msg_iov = nullptr;
    }

    const cmsghdr* find(int level, int type)
    {
        for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr;
             part = CMSG_NXTHDR(&header, part)) {
            if (part->cmsg_level == level && part->cmsg_type == type)
                return part;
        }
        return nullptr;
    }
};

} // namespace

EchoSocket::EchoSocket(IpVersion version)
    : m_version(version)
{
    const int family = version == IpVersion::V4 ? AF_INET : AF_INET6;
    const int protocol = version == IpVersion::V4 ? int{IPPROTO_ICMP} : int{IPPROTO_ICMPV6};
    m_socket = behindStandardStreams(::socket(family, SOCK_DGRAM | SOCK_CLOEXEC, protocol));
    const bool mayTryRaw = errno == EACCES || errno == EPERM || errno == EPROTONOSUPPORT;
    if (m_socket < 0 && mayTryRaw) {
        m_isRaw = true;
        m_socket = behindStandardStreams(::socket(family, SOCK_RAW | SOCK_CLOEXEC, protocol));
    }
    if (m_socket < 0) {
        m_fault = errno == EAFNOSUPPORT ? EchoStatus::NetworkUnreachable : EchoStatus::NoResources;
        fail(errno);
        return;
    }
    setOption(m_socket, SOL_SOCKET, SO_TIMESTAMPNS, int{1});
    if (m_isRaw)
        prepareRaw();
    else
        prepareDatagrams();
    if (version == IpVersion::V4) {
        // As Windows sends it: routers may take it to pieces. With IP_PMTUDISC_DONT datagram
        // sockets would not hear of routers that refuse to.
        setOption(m_socket, IPPROTO_IP, IP_MTU_DISCOVER, int{IP_PMTUDISC_OMIT});
    } else {
        setOption(m_socket, IPPROTO_IPV6, IPV6_UNICAST_HOPS, int{255});
    }
}

EchoSocket::~EchoSocket()
{
    if (m_socket >= 0)
        ::close(m_socket);
}

/// Here the system sorts out what belongs to whom and queues error messages apart.
void EchoSocket::prepareDatagrams() const
{
    if (m_version == IpVersion::V4) {
        setOption(m_socket, IPPROTO_IP, IP_RECVERR, int{1});
        setOption(m_socket, IPPROTO_IP, IP_RECVTTL, int{1});
    } else {
        setOption(m_socket, IPPROTO_IPV6, IPV6_RECVERR, int{1});
    }
}

/// These get all ICMP messages that reach this machine, error messages among them.
void EchoSocket::prepareRaw() const
{
    if (m_version == IpVersion::V4) {
        icmp_filter blocked{};
        blocked.data = ~(1U << ICMP_ECHOREPLY | 1U << ICMP_DEST_UNREACH | 1U << ICMP_SOURCE_QUENCH |
                         1U << ICMP_TIME_EXCEEDED | 1U << ICMP_PARAMETERPROB);
        setOption(m_socket, SOL_RAW, ICMP_FILTER, blocked);
        return;
    }
    icmp6_filter passed{};
    ICMP6_FILTER_SETBLOCKALL(&passed);
    for (const int type : {ICMP6_ECHO_REPLY, ICMP6_DST_UNREACH, ICMP6_PACKET_TOO_BIG,
                           ICMP6_TIME_EXCEEDED, ICMP6_PARAM_PROB})
        ICMP6_FILTER_SETPASS(type, &passed);
    setOption(m_socket, IPPROTO_ICMPV6, ICMP6_FILTER, passed);
}

/// So that a machine that pings a lot does not fill up the queue of every raw socket with the
/// replies to all.
void EchoSocket::letOnlyRepliesTo(const IcmpMessage& message) const
{
    const bool isV4 = m_version == IpVersion::V4;
    const std::uint32_t reply = isV4 ? ICMP_ECHOREPLY : ICMP6_ECHO_REPLY;
    std::array<sock_filter, 7> program{{
        // X becomes the size of the IP header, which only IPv4 sockets have before the message.
        isV4 ? sock_filter BPF_STMT(BPF_LDX | BPF_B | BPF_MSH, 0)
             : sock_filter BPF_STMT(BPF_LDX | BPF_W | BPF_IMM, 0),
        BPF_STMT(BPF_LD | BPF_B | BPF_IND, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, reply, 0, 2),
        BPF_STMT(BPF_LD | BPF_H | BPF_IND, 4),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, message.id(), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, 0xFFFFFFFF),
        BPF_STMT(BPF_RET | BPF_K, 0),
    }};
    setOption(m_socket, SOL_SOCKET, SO_ATTACH_FILTER,
              sock_fprog{static_cast<unsigned short>(program.size()), program.data()});
    // Some may have come before the filter, and would leave no room.
    while (::recv(m_socket, nullptr, 0, MSG_DONTWAIT | MSG_TRUNC) >= 0) {
    }
}

std::optional<EchoStatus> EchoSocket::send(IcmpMessage& message, const sockaddr* address,
                                           unsigned addressSize)
{
    if (m_isRaw)
        letOnlyRepliesTo(message);
    else
        takeId(message);
    const auto& bytes = message.bytes();
    m_buffer.resize(bytes.size() + headerRoom);
    m_sent = std::chrono::steady_clock::now();
    m_sentByStampClock = std::chrono::system_clock::now();
    if (::sendto(m_socket, bytes.data(), bytes.size(), MSG_DONTWAIT, address, addressSize) < 0)
        return statusOfError(errno);
    return std::nullopt;
}

/// The id of what a datagram socket sends is its port, which both kinds of address have at the
/// same place. Bound here, because the time of the first send would be longer by it.
void EchoSocket::takeId(IcmpMessage& message) const
{
    sockaddr_in6 own{};
    own.sin6_family = m_version == IpVersion::V4 ? AF_INET : AF_INET6;
    socklen_t size = m_version == IpVersion::V4 ? sizeof(sockaddr_in) : sizeof own;
    auto* address = reinterpret_cast<sockaddr*>(&own);
    if (::bind(m_socket, address, size) == 0 && ::getsockname(m_socket, address, &size) == 0)
        message.setId(ntohs(own.sin6_port));
}

bool EchoSocket::wait(std::chrono::nanoseconds time) const
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec limit{};
    limit.tv_sec = static_cast<time_t>(seconds.count());
    limit.tv_nsec = static_cast<long>((time - seconds).count());
    pollfd ready{m_socket, POLLIN, 0};
    return ::ppoll(&ready, 1, &limit, nullptr) > 0;
}

std::optional<IcmpMessage::News> EchoSocket::receive(const IcmpMessage& request)
{
    std::optional<IcmpMessage::News> news;
    if (!m_isRaw)
        news = receiveError(request);
    if (!news)
        news = receiveReply(request);
    if (news && news->status != EchoStatus::Success)
        fail(errorOf(news->status));
    return news;
}

std::optional<IcmpMessage::News> EchoSocket::receiveReply(const IcmpMessage& request)
{
    Received received(m_socket, m_buffer, 0);
    if (received.size < 0) {
        // A datagram socket shows its latest error here as well, whichever of its requests that
        // is about; the queue tells.
        if (!m_isRaw || errno == EAGAIN || errno == EINTR)
            return std::nullopt;
        return IcmpMessage::News{statusOfError(errno), 0};
    }
    if ((received.header.msg_flags & MSG_TRUNC) != 0)
        return std::nullopt;
    m_roundTrip = std::chrono::steady_clock::now() - m_sent;
    if (const cmsghdr* part = received.find(SOL_SOCKET, SCM_TIMESTAMPNS)) {
        const auto stamp = valueOf<timespec>(*part);
        const auto byStamp = std::chrono::seconds(stamp.tv_sec) +
                             std::chrono::nanoseconds(stamp.tv_nsec) -
                             m_sentByStampClock.time_since_epoch();
        // Unless that clock was set meanwhile.
        if (byStamp >= std::chrono::nanoseconds(0) && byStamp < m_roundTrip)
            m_roundTrip = byStamp;
    }
    const bool hasHeader = m_isRaw && m_version == IpVersion::V4;
    auto news =
        request.read(m_buffer.data(), static_cast<std::size_t>(received.size),
                     hasHeader ? IcmpMessage::Framing::WithIpHeader : IcmpMessage::Framing::Bare);
    if (const cmsghdr* part = received.find(IPPROTO_IP, IP_TTL); news && part != nullptr)
        news->timeToLive = static_cast<std::uint8_t>(valueOf<int>(*part));
    return news;
}

/// An error message comes with the request that it quotes as its content.
std::optional<IcmpMessage::News> EchoSocket::receiveError(const IcmpMessage& request)
{
    Received received(m_socket, m_buffer, MSG_ERRQUEUE);
    if (received.size < 0)
        return std::nullopt;
    const cmsghdr* part = m_version == IpVersion::V4 ? received.find(IPPROTO_IP, IP_RECVERR)
                                                     : received.find(IPPROTO_IPV6, IPV6_RECVERR);
    if (part == nullptr)
        return std::nullopt;
    const auto error = valueOf<sock_extended_err>(*part);
    if (error.ee_origin == SO_EE_ORIGIN_LOCAL)
        return IcmpMessage::News{statusOfError(static_cast<int>(error.ee_errno)), 0};
    if (!request.isQuotedBy(m_buffer.data(), static_cast<std::size_t>(received.size)))
        return std::nullopt;
    const auto status = IcmpMessage::statusOf(m_version, error.ee_type, error.ee_code);
    return status ? std::optional(IcmpMessage::News{*status, 0}) : std::nullopt;
}

} // namespace vlbase::platform

#include "icmpmessage.h"

#include <algorithm>

namespace vlbase::platform {

namespace {

constexpr std::size_t icmpHeader = 8;
constexpr std::size_t idAt = 4;
constexpr std::size_t sequenceAt = 6;

constexpr unsigned char reply4 = 0;
constexpr unsigned char request4 = 8;
constexpr unsigned char request6 = 128;
constexpr unsigned char reply6 = 129;

void put16(std::vector<unsigned char>& bytes, std::size_t at, unsigned value)
{
    bytes[at] = static_cast<unsigned char>(value >> 8);
    bytes[at + 1] = static_cast<unsigned char>(value);
}

unsigned get16(const unsigned char* bytes)
{
    return static_cast<unsigned>(bytes[0]) << 8 | bytes[1];
}

/// RFC 1071. Over a message with its own sum in place it is 0.
unsigned checksum(const unsigned char* bytes, std::size_t size)
{
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        sum += get16(bytes + i);
    if (size % 2 == 1)
        sum += static_cast<unsigned>(bytes[size - 1]) << 8;
    while (sum > 0xFFFF)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<unsigned>(~sum & 0xFFFF);
}

/// The bytes of an IPv4 header, 0 for what is none.
std::size_t ip4HeaderSize(const unsigned char* packet, std::size_t size)
{
    constexpr std::size_t least = 20;
    if (size < least || packet[0] >> 4 != 4)
        return 0;
    const std::size_t header = (packet[0] & 0xFU) * 4;
    return header >= least && header <= size ? header : 0;
}

/// Where ICMP begins in a quoted IPv4 packet; 0 for another protocol and a later fragment.
std::size_t icmpIn4(const unsigned char* packet, std::size_t size)
{
    constexpr unsigned char icmp = 1;
    const std::size_t header = ip4HeaderSize(packet, size);
    const bool isFirst = header != 0 && (get16(packet + 6) & 0x1FFF) == 0;
    return isFirst && packet[9] == icmp ? header : 0;
}

/// The same for IPv6. A request longer than the link carries has a fragment header.
std::size_t icmpIn6(const unsigned char* packet, std::size_t size)
{
    constexpr std::size_t header = 40;
    constexpr std::size_t fragmentHeader = 8;
    constexpr unsigned char fragment = 44;
    constexpr unsigned char icmp = 58;
    if (size < header || packet[0] >> 4 != 6)
        return 0;
    if (packet[6] == icmp)
        return header;
    const bool isFirst = packet[6] == fragment && size >= header + fragmentHeader &&
                         (get16(packet + header + 2) & 0xFFF8) == 0;
    return isFirst && packet[header] == icmp ? header + fragmentHeader : 0;
}

EchoStatus unreachable4(int code)
{
    switch (code) {
    case 0:  // network
    case 6:  // network unknown
    case 9:  // network prohibited
    case 11: // network, for this type of service
        return EchoStatus::NetworkUnreachable;
    case 2:
        return EchoStatus::ProtocolUnreachable;
    case 3:
        return EchoStatus::PortUnreachable;
    case 4: // too big, and must not be fragmented
        return EchoStatus::PacketTooBig;
    case 5: // source route failed
        return EchoStatus::BadRoute;
    default: // host, host prohibited, filtered
        return EchoStatus::HostUnreachable;
    }
}

EchoStatus unreachable6(int code)
{
    switch (code) {
    case 0: // no route
    case 6: // route rejected
        return EchoStatus::NetworkUnreachable;
    case 4:
        return EchoStatus::PortUnreachable;
    default: // prohibited, beyond scope, address, policy
        return EchoStatus::HostUnreachable;
    }
}

EchoStatus expired(int code)
{
    return code == 0 ? EchoStatus::TtlExpiredInTransit : EchoStatus::TtlExpiredReassembling;
}

} // namespace

IcmpMessage::IcmpMessage(IpVersion version, std::uint16_t id, std::uint16_t sequence,
                         std::uint32_t token, std::size_t size)
    : m_version(version)
    , m_bytes(icmpHeader + size)
{
    m_bytes[0] = version == IpVersion::V4 ? request4 : request6;
    put16(m_bytes, sequenceAt, sequence);
    for (std::size_t i = 0; i < size; ++i)
        m_bytes[icmpHeader + i] =
            static_cast<unsigned char>(i < sizeof token ? token >> (8 * i) : i);
    setId(id);
}

std::uint16_t IcmpMessage::id() const
{
    return static_cast<std::uint16_t>(get16(&m_bytes[idAt]));
}

void IcmpMessage::setId(std::uint16_t id)
{
    put16(m_bytes, idAt, id);
    // That of IPv6 covers addresses too, so the system makes it.
    put16(m_bytes, 2, 0);
    if (m_version == IpVersion::V4)
        put16(m_bytes, 2, checksum(m_bytes.data(), m_bytes.size()));
}

std::optional<IcmpMessage::News> IcmpMessage::read(const unsigned char* packet, std::size_t size,
                                                   Framing framing) const
{
    std::uint8_t timeToLive = 0;
    if (framing == Framing::WithIpHeader) {
        const std::size_t header = ip4HeaderSize(packet, size);
        if (header == 0)
            return std::nullopt;
        timeToLive = packet[8];
        packet += header;
        size -= header;
    }
    if (size < icmpHeader)
        return std::nullopt;
    // Raw IPv4 sockets see packets before the system has looked at them.
    if (framing == Framing::WithIpHeader && checksum(packet, size) != 0)
        return std::nullopt;
    if (isAnsweredBy(packet, size))
        return News{EchoStatus::Success, timeToLive};
    const auto status = statusOf(m_version, packet[0], packet[1]);
    if (status && isQuotedInPacket(packet + icmpHeader, size - icmpHeader))
        return News{*status, 0};
    return std::nullopt;
}

bool IcmpMessage::isAnsweredBy(const unsigned char* message, std::size_t size) const
{
    return message[0] == (m_version == IpVersion::V4 ? reply4 : reply6) && message[1] == 0 &&
           size == m_bytes.size() &&
           std::equal(m_bytes.begin() + idAt, m_bytes.end(), message + idAt);
}

bool IcmpMessage::isQuotedInPacket(const unsigned char* packet, std::size_t size) const
{
    const std::size_t begin =
        m_version == IpVersion::V4 ? icmpIn4(packet, size) : icmpIn6(packet, size);
    return begin != 0 && isQuotedBy(packet + begin, size - begin);
}

bool IcmpMessage::isQuotedBy(const unsigned char* message, std::size_t size) const
{
    return size >= icmpHeader && message[0] == m_bytes[0] &&
           std::equal(message + idAt, message + icmpHeader, m_bytes.begin() + idAt);
}

std::optional<EchoStatus> IcmpMessage::statusOf(IpVersion version, int type, int code)
{
    const bool isV4 = version == IpVersion::V4;
    switch (isV4 ? type : type + 256) {
    case 3:
        return unreachable4(code);
    case 4:
        return EchoStatus::SourceQuench;
    case 256 + 1:
        return unreachable6(code);
    case 256 + 2:
        return EchoStatus::PacketTooBig;
    case 11:
    case 256 + 3:
        return expired(code);
    case 12:
    case 256 + 4:
        return EchoStatus::ParameterProblem;
    default:
        return std::nullopt;
    }
}

} // namespace vlbase::platform

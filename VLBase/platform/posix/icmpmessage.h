#pragma once

#include <VLBase/platform/echo.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace vlbase::platform {

/// One echo request as it goes over the wire, which knows its answers when it sees them. No
/// system is asked for anything.
class IcmpMessage
{
public:
    /// An answer: the reply, or the reason why there will be none.
    struct News
    {
        EchoStatus status;
        std::uint8_t timeToLive; // 0 where the packet does not show it
    };

    /// How received packets begin: raw IPv4 sockets hand out the IP header too.
    enum class Framing { Bare, WithIpHeader };

    /// \param token any number; with it requests of the same id and sequence differ, and so do
    ///        replies to them
    IcmpMessage(IpVersion version, std::uint16_t id, std::uint16_t sequence, std::uint32_t token,
                std::size_t size);

    const std::vector<unsigned char>& bytes() const { return m_bytes; }

    std::uint16_t id() const;
    /// For sockets where the system chooses it.
    void setId(std::uint16_t id);

    /// None for a packet that is not about this request: another's, damaged, or cut short.
    std::optional<News> read(const unsigned char* packet, std::size_t size, Framing framing) const;

    /// Whether `message`, of which only the beginning may be there, is this request.
    bool isQuotedBy(const unsigned char* message, std::size_t size) const;

    /// What an error message of a router or host means; none for other types of message.
    static std::optional<EchoStatus> statusOf(IpVersion version, int type, int code);

private:
    bool isAnsweredBy(const unsigned char* message, std::size_t size) const;
    bool isQuotedInPacket(const unsigned char* packet, std::size_t size) const;

    IpVersion m_version;
    std::vector<unsigned char> m_bytes;
};

} // namespace vlbase::platform

#pragma once

#include "icmpmessage.h"

#include <VLBase/platform/echo.h>

#include <chrono>
#include <optional>
#include <vector>

struct sockaddr;

namespace vlbase::platform {

/// A socket for one echo request: a datagram socket, which every user of certain groups may
/// open, or else a raw one, which takes a privilege.
class EchoSocket
{
public:
    explicit EchoSocket(IpVersion version);
    ~EchoSocket();
    EchoSocket(const EchoSocket&) = delete;
    EchoSocket& operator=(const EchoSocket&) = delete;

    // What fails answers the reason and leaves the system's code.

    std::optional<EchoStatus> fault() const { return m_fault; }

    /// Sends it, with the id that the system has chosen, if it does.
    std::optional<EchoStatus> send(IcmpMessage& message, const sockaddr* address,
                                   unsigned addressSize);

    /// When that was.
    std::chrono::steady_clock::time_point sent() const { return m_sent; }

    /// Waits until there is something to receive; also comes back early without.
    /// \return whether there is.
    bool wait(std::chrono::nanoseconds time) const;

    /// Takes one packet. None when it was not about the request.
    std::optional<IcmpMessage::News> receive(const IcmpMessage& request);

    /// From the sending to the arrival of the packet received last, however late it was taken.
    std::chrono::nanoseconds roundTrip() const { return m_roundTrip; }

private:
    void prepareDatagrams() const;
    void prepareRaw() const;
    void takeId(IcmpMessage& message) const;
    void letOnlyRepliesTo(const IcmpMessage& message) const;
    std::optional<IcmpMessage::News> receiveReply(const IcmpMessage& request);
    std::optional<IcmpMessage::News> receiveError(const IcmpMessage& request);

    IpVersion m_version;
    bool m_isRaw = false;
    int m_socket = -1;
    std::optional<EchoStatus> m_fault;
    std::vector<unsigned char> m_buffer;
    std::chrono::steady_clock::time_point m_sent;
    std::chrono::system_clock::time_point m_sentByStampClock;
    std::chrono::nanoseconds m_roundTrip{0};
};

} // namespace vlbase::platform

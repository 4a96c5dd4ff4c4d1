#pragma once

#include <VLBase/platform/echo.h>

#include <QHostAddress>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>

namespace vlbase {

/// Sends an echo request to an address and waits for its reply.
platform::EchoAnswer sendEcho(const QHostAddress& address, std::uint16_t size,
                              std::chrono::milliseconds limit,
                              const std::function<bool()>& isAbandoned = {});

/// What a status means; empty for success, and for what has no text.
QString echoStatusText(platform::EchoStatus status);

/// While one lives, IVelaOS::Ping() of its thread no longer waits once the flag is false, where
/// the system allows that.
class PingInterest
{
public:
    explicit PingInterest(const std::atomic<bool>& isInterested);
    ~PingInterest();
    PingInterest(const PingInterest&) = delete;
    PingInterest& operator=(const PingInterest&) = delete;

    /// Whether the calling thread's is over; false without one.
    static bool isOver();
};

} // namespace vlbase

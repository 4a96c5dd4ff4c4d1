#pragma once

#include <VLBase/vlbase_export.h>

#include <QHostAddress>
#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace vlbase {

/// The first address of a host; none for one that has none. Blocks for the name service, except
/// for an address. Any thread.
VLBASE_EXPORT std::optional<QHostAddress> firstAddress(const QString& host);

/// What came of one echo request.
struct PingAnswer
{
    enum class Outcome {
        Reply,
        NoReply,
        NotSent,  ///< this user may not, or cannot now; IVelaOS::GetLastError() says why
        Abandoned ///< because it was asked to
    };

    Outcome outcome = Outcome::NoReply;
    QString message; ///< why there is no reply, as IVelaOS::Ping() tells it; may be empty
    std::chrono::microseconds roundTrip{0}; ///< whole milliseconds on Windows
    std::uint8_t timeToLive = 0;            ///< 0 for IPv6
};

/// Sends an echo request with \a size bytes of data and waits for its reply, at most for \a limit;
/// as IVelaOS::Ping(), but finer and for those who want to give up.
/// \param isAbandoned asked now and then while waiting, which ends once it says yes; not on
///     Windows. May be empty.
VLBASE_EXPORT PingAnswer ping(const QHostAddress& address, std::uint16_t size,
                              std::chrono::milliseconds limit,
                              const std::function<bool()>& isAbandoned = {});

} // namespace vlbase

#include "ping.h"

#include "internal/echorequest.h"

#include <QHostInfo>

namespace vlbase {

namespace {

using platform::EchoAnswer;
using platform::EchoStatus;

PingAnswer::Outcome outcomeOf(const EchoAnswer& answer)
{
    if (answer.isAbandoned)
        return PingAnswer::Outcome::Abandoned;
    if (answer.status == EchoStatus::Success)
        return PingAnswer::Outcome::Reply;
    return answer.status == EchoStatus::NoResources ? PingAnswer::Outcome::NotSent
                                                    : PingAnswer::Outcome::NoReply;
}

} // namespace

std::optional<QHostAddress> firstAddress(const QString& host)
{
    // An address stands for itself. QHostInfo says so too, but asks the name service for its name
    // first, which can take many seconds.
    QHostAddress spelled;
    if (spelled.setAddress(host))
        return spelled;
    const QList<QHostAddress> addresses = QHostInfo::fromName(host).addresses();
    return addresses.isEmpty() ? std::nullopt : std::optional(addresses.constFirst());
}

PingAnswer ping(const QHostAddress& address, std::uint16_t size, std::chrono::milliseconds limit,
                const std::function<bool()>& isAbandoned)
{
    const EchoAnswer answer = sendEcho(address, size, limit, isAbandoned);
    return {outcomeOf(answer), echoStatusText(answer.status), answer.roundTrip, answer.timeToLive};
}

} // namespace vlbase

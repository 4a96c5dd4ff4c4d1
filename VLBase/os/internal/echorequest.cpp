#include "echorequest.h"

#include <VLBase/platform/lasterror.h>

#include <QAbstractSocket>

namespace vlbase {

namespace {

thread_local const std::atomic<bool>* s_isInterested = nullptr;

} // namespace

platform::EchoAnswer sendEcho(const QHostAddress& address, std::uint16_t size,
                              std::chrono::milliseconds limit,
                              const std::function<bool()>& isAbandoned)
{
    platform::EchoRequest request;
    switch (address.protocol()) {
    case QAbstractSocket::IPv4Protocol:
        request.version = platform::IpVersion::V4;
        break;
    case QAbstractSocket::IPv6Protocol:
        request.version = platform::IpVersion::V6;
        break;
    default:
        platform::setLastError(platform::Fault::InvalidArgument);
        return {platform::EchoStatus::InvalidAddress};
    }
    request.address = address.toString().toStdString();
    request.size = size;
    request.limit = limit;
    request.isAbandoned = isAbandoned;
    return platform::sendEcho(request);
}

QString echoStatusText(platform::EchoStatus status)
{
    using platform::EchoStatus;
    switch (status) {
    case EchoStatus::BufferTooSmall:
        return QStringLiteral("IP buffer too small.");
    case EchoStatus::NetworkUnreachable:
        return QStringLiteral("Destination network unreachable.");
    case EchoStatus::HostUnreachable:
        return QStringLiteral("Destination host unreachable.");
    case EchoStatus::ProtocolUnreachable:
        return QStringLiteral("Destination protocol unreachable.");
    case EchoStatus::PortUnreachable:
        return QStringLiteral("Destination port unreachable.");
    case EchoStatus::NoResources:
        return QStringLiteral("IP NO RESOURCES");
    case EchoStatus::BadOption:
        return QStringLiteral("IP BAD OPTION");
    case EchoStatus::HardwareError:
        return QStringLiteral("Hardware error.");
    case EchoStatus::PacketTooBig:
        return QStringLiteral("IP packet too big.");
    case EchoStatus::TimedOut:
        return QStringLiteral("IP Timeout.");
    case EchoStatus::BadRequest:
        return QStringLiteral("IP BAD REQ");
    case EchoStatus::BadRoute:
        return QStringLiteral("IP BAD ROUTE");
    case EchoStatus::TtlExpiredInTransit:
    case EchoStatus::TtlExpiredReassembling:
        return QStringLiteral("TTL expired.");
    case EchoStatus::ParameterProblem:
        return QStringLiteral("IP PARAM PROBLEM");
    case EchoStatus::SourceQuench:
        return QStringLiteral("IP SOURCE QUENCH");
    case EchoStatus::OptionTooBig:
        return QStringLiteral("IP OPTION TOO BIG");
    case EchoStatus::BadDestination:
        return QStringLiteral("Bad destination.");
    case EchoStatus::InvalidAddress:
        return QStringLiteral("Invalid IP Address");
    case EchoStatus::Success:
    case EchoStatus::GeneralFailure:
        break;
    }
    return {};
}

PingInterest::PingInterest(const std::atomic<bool>& isInterested)
{
    s_isInterested = &isInterested;
}

PingInterest::~PingInterest()
{
    s_isInterested = nullptr;
}

bool PingInterest::isOver()
{
    return s_isInterested != nullptr && !*s_isInterested;
}

} // namespace vlbase

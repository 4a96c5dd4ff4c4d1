#include "qabstractsockethelpers.h"

#include <QCoreApplication>

#include <array>

namespace QAbstractSocketHelpers {

namespace {

// By the value of the error, from 0. Translations hang on these texts, slips included.
constexpr std::array texts = {
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The connection was refused by the peer (or timed out)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The remote host closed the connection. Note that the client socket (i.e., "
                      "this socket) will be closed after the remote close notification has been "
                      "sent."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers", "The host address was not found."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The socket operation failed because the application lacked the required "
                      "privileges."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The local system ran out of resources (e.g., too many sockets)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers", "The socket operation timed out."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The datagram was larger than the operating system's limit (which can be as "
                      "low as 8192 bytes)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "An error occurred with the network (e.g., the network cable was "
                      "accidentally plugged out)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The address specified is already in use and was set to be exclusive."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The address specified does not belong to the host."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The requested socket operation is not supported by the local operating "
                      "system (e.g., lack of IPv6 support)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "Used by QAbstractSocketEngine only, The last operation attempted has not "
                      "finished yet (still in progress in the background)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The socket is using a proxy, and the proxy requires authentication."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The SSL / TLS handshake failed, so the connection was closed (only used in "
                      "QSslSocket)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "Could not contact the proxy server because the connection to that server "
                      "was denied."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The connection to the proxy server was closed unexpectedly(before the "
                      "connection to the final peer was established)."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The connection to the proxy server timed out or the proxy server stopped "
                      "responding in the authentication phase."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The proxy address (or the application proxy) was not found."),
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers",
                      "The connection negotiation with the proxy server because the response from "
                      "the proxy server could not be understood."),
};

constexpr const char* otherText =
    QT_TRANSLATE_NOOP("QAbstractSocketHelpers", "An unidentified error occurred.");

} // namespace

QString errorString(QAbstractSocket::SocketError error)
{
    const int value = error;
    const bool known = value >= 0 && value < static_cast<int>(texts.size());
    const char* text = known ? texts[static_cast<std::size_t>(value)] : otherText;
    return QCoreApplication::translate("QAbstractSocketHelpers", text);
}

} // namespace QAbstractSocketHelpers

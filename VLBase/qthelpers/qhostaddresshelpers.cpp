#include "qhostaddresshelpers.h"

#include <QHostAddress>
#include <QNetworkInterface>

namespace QHostAddressHelpers {

bool isIpLocal(const QHostAddress& address)
{
    bool isMapped = false; // as a server of both protocols sees a client of the older one
    const quint32 ipv4 = address.toIPv4Address(&isMapped);
    if (isMapped && address.protocol() == QAbstractSocket::IPv6Protocol)
        return isIpLocal(QHostAddress(ipv4));
    return address == QHostAddress::LocalHost || address == QHostAddress::LocalHostIPv6 ||
           address.toString().startsWith(QLatin1String("127.0.0.")) ||
           QNetworkInterface::allAddresses().contains(address);
}

} // namespace QHostAddressHelpers

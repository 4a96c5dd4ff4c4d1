#include "qhostaddresshelpers.h"

#include <QHostAddress>
#include <QNetworkInterface>

namespace QHostAddressHelpers {

bool isIpLocal(const QHostAddress& address)
{
    return address == QHostAddress::LocalHost || address == QHostAddress::LocalHostIPv6 ||
           address.toString().startsWith(QLatin1String("127.0.0.")) ||
           QNetworkInterface::allAddresses().contains(address);
}

} // namespace QHostAddressHelpers

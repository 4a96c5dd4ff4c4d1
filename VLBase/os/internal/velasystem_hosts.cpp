#include "velasystem.h"

#include <QAbstractSocket>
#include <QHostAddress>
#include <QHostInfo>
#include <QStringList>
#include <QtEndian>

#include <algorithm>

namespace {

bool isIPv4(const QHostAddress& address)
{
    return address.protocol() == QAbstractSocket::IPv4Protocol;
}

} // namespace

quint32 IVelaOS::GetNativeAddressByHostNameStatic(const QString& host)
{
    QHostAddress spelled;
    if (spelled.setAddress(host) && isIPv4(spelled))
        return qbswap(spelled.toIPv4Address());

    const QHostInfo info = QHostInfo::fromName(host);
    if (info.error() != QHostInfo::NoError)
        return 0;
    const QList<QHostAddress> addresses = info.addresses();
    const auto found = std::find_if(addresses.begin(), addresses.end(), isIPv4);
    return found == addresses.end() ? 0 : qbswap(found->toIPv4Address());
}

int VelaSystem::GetHostNameByAdress(const QString& address, QString& hostName)
{
    const QHostInfo info = QHostInfo::fromName(address);
    hostName.clear();
    if (info.error() == QHostInfo::NoError)
        hostName = info.hostName();
    return info.error();
}

int VelaSystem::GetAdressByHostName(const QString& hostName, QString& addresses)
{
    addresses = hostName;
    const QHostInfo info = QHostInfo::fromName(hostName);
    const QList<QHostAddress> found = info.addresses();
    if (info.error() == QHostInfo::NoError && !found.isEmpty()) {
        QStringList texts;
        for (const QHostAddress& address : found)
            texts << address.toString();
        addresses = texts.join(QLatin1Char(','));
    }
    return info.error();
}

quint32 VelaSystem::GetNativeAddressByHostName(const QString& host)
{
    return GetNativeAddressByHostNameStatic(host);
}

QString VelaSystem::GetIpAddressByNativeAddress(quint32 address)
{
    return QHostAddress(qbswap(address)).toString();
}

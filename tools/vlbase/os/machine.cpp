#include "machine.h"

#include <VLBase/os/ivelaos.h>

#include <QHostInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <string>

namespace vlbase::tool::os {
namespace {

Fact textFact(const QString& key, const QString& title, const QString& text)
{
    return {key, text, title, QStringList(text)};
}

Fact textFact(const QString& key, const QString& title, const std::wstring& text)
{
    return textFact(key, title, QString::fromStdWString(text));
}

Fact threadFact(const QString& key, const QString& title, int id)
{
    return {key, id, title, QStringList(QString::number(id))};
}

/// In microseconds, and as in "+05:45".
Fact offsetFact(const QString& key, const QString& title, qint64 offset)
{
    const auto minutes = static_cast<int>(qAbs(offset) / 60'000'000);
    const QString text =
        QString::asprintf("%c%02d:%02d", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
    return {key, static_cast<double>(offset), title, QStringList(text)};
}

Fact addressesFact(IVelaOS& service, const QString& host)
{
    Fact fact{QStringLiteral("addresses"), {}, QStringLiteral("addresses"), {}};
    QString addresses;
    if (service.GetAdressByHostName(host, addresses) == QHostInfo::NoError)
        fact.texts = addresses.split(u',');
    fact.value = QJsonArray::fromStringList(fact.texts);
    return fact;
}

Fact adaptersFact(IVelaOS& service)
{
    Fact fact{QStringLiteral("adapters"), {}, QStringLiteral("adapters"), {}};
    QJsonArray array;
    for (int i = 0;; ++i) {
        const QString mac = QString::fromUtf8(service.GetIdMac(i));
        const QString ip = QString::fromUtf8(service.GetIpAddress(i));
        if (mac.isEmpty() && ip.isEmpty())
            break;
        array.append(QJsonObject{{QStringLiteral("mac"), mac}, {QStringLiteral("ip"), ip}});
        fact.texts << (mac + u' ' + ip).trimmed();
    }
    fact.value = array;
    return fact;
}

} // namespace

std::vector<Fact> machineFacts(IVelaOS& service)
{
    const std::wstring user = service.GetUserLoginName();
    const QString computer = QString::fromStdWString(service.GetWorkStationName());
    return {
        textFact(QStringLiteral("computer"), QStringLiteral("computer"), computer),
        textFact(QStringLiteral("user"), QStringLiteral("user"), user),
        textFact(QStringLiteral("userSid"), QStringLiteral("user SID"), service.GetUserSID(user)),
        addressesFact(service, computer),
        adaptersFact(service),
        textFact(QStringLiteral("systemDirectory"), QStringLiteral("system directory"),
                 service.GetSystemPath()),
        textFact(QStringLiteral("temporaryDirectory"), QStringLiteral("temporary directory"),
                 service.GetTempDir()),
        textFact(QStringLiteral("userDirectory"), QStringLiteral("user directory"),
                 service.GetUserDir()),
        offsetFact(QStringLiteral("utcOffset"), QStringLiteral("UTC offset now"),
                   service.GetTimezoneOffset(true)),
        offsetFact(QStringLiteral("standardUtcOffset"), QStringLiteral("standard UTC offset"),
                   service.GetTimezoneOffset(false)),
        // Texts: numbers of JSON lose the digits of large stamps.
        textFact(QStringLiteral("seconds"), QStringLiteral("seconds"),
                 QString::number(service.GetSecTimestamp())),
        textFact(QStringLiteral("milliseconds"), QStringLiteral("milliseconds"),
                 QString::number(service.GetMSecTimestamp())),
        textFact(QStringLiteral("stamp"), QStringLiteral("time stamp"),
                 QString::number(service.GetTimestamp())),
        threadFact(QStringLiteral("thread"), QStringLiteral("thread"),
                   service.GetCurrentThreadId()),
        threadFact(QStringLiteral("appThread"), QStringLiteral("application thread"),
                   service.GetAppThreadId()),
        textFact(QStringLiteral("uniqueId"), QStringLiteral("new unique identifier"),
                 QString::fromLatin1(service.CreateUniqueIdAsString())),
    };
}

} // namespace vlbase::tool::os

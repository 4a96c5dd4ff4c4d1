#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/shutdown.h>
#include <VLBase/platform/thread.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QUuid>

#include <cerrno>

namespace vlbase::platform {

namespace {

struct Verbs
{
    QString askWhether;
    QString withFlags; // since systemd 246
    QString plain;
};

Verbs verbsOf(SystemEnd end)
{
    const QString verb =
        end == SystemEnd::PowerOff ? QStringLiteral("PowerOff") : QStringLiteral("Reboot");
    return {QStringLiteral("Can") + verb, verb + QStringLiteral("WithFlags"), verb};
}

std::uint32_t codeOf(const QDBusError& error)
{
    switch (error.type()) {
    case QDBusError::AccessDenied:
        return EPERM;
    case QDBusError::ServiceUnknown:
    case QDBusError::UnknownObject:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownMethod:
        return ENOSYS;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return ETIMEDOUT;
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
        return ENOTCONN;
    default:
        return EIO;
    }
}

/// logind's manager, over a connection of its own to the system bus: the application's shared one
/// would complain where there is no QCoreApplication.
class LoginManager
{
public:
    LoginManager()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_name))
    {
    }
    LoginManager(const LoginManager&) = delete;
    LoginManager& operator=(const LoginManager&) = delete;
    ~LoginManager() { QDBusConnection::disconnectFromBus(m_name); }

    bool isConnected() const { return m_bus.isConnected(); }

    QDBusMessage call(const QString& method, const QVariantList& arguments = {}) const
    {
        constexpr int timeoutMs = 5000;
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), method);
        message.setArguments(arguments);
        return m_bus.call(message, QDBus::Block, timeoutMs);
    }

private:
    const QString m_name = QUuid::createUuid().toString();
    const QDBusConnection m_bus;
};

bool fail(const QDBusMessage& reply)
{
    setLastError(codeOf(QDBusError(reply)));
    return false;
}

bool mayEnd(const LoginManager& manager, const Verbs& verbs)
{
    if (!manager.isConnected()) {
        setLastError(ENOTCONN);
        return false;
    }
    const QDBusMessage reply = manager.call(verbs.askWhether);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return fail(reply);
    const QString answer = reply.arguments().value(0).toString();
    // "challenge" would ask for a password. "inhibited" asks programs that are not heard here.
    if (answer == u"yes" || answer == u"inhibited")
        return true;
    setLastError(Fault::NotPermitted);
    return false;
}

/// Whether the service itself refused. A reply that is missing may be so because the system ends.
bool isRefusal(const QDBusMessage& reply)
{
    const std::uint32_t code = codeOf(QDBusError(reply));
    return reply.type() == QDBusMessage::ErrorMessage && code != ETIMEDOUT && code != ENOTCONN;
}

bool beginEnd(const LoginManager& manager, const Verbs& verbs)
{
    constexpr quint64 skipInhibitors = 1 << 4; // since systemd 257, refused as invalid before
    QDBusMessage reply = manager.call(verbs.withFlags, {QVariant::fromValue(skipInhibitors)});
    if (isRefusal(reply))
        reply = manager.call(verbs.plain, {false}); // asks nobody for a password
    return reply.type() == QDBusMessage::ReplyMessage || fail(reply);
}

} // namespace

bool endSystem(SystemEnd end)
{
    constexpr int waitMs = 2000; // in which other threads of this process can finish
    const Verbs verbs = verbsOf(end);
    const LoginManager manager;
    if (!mayEnd(manager, verbs))
        return false;
    alertableSleep(waitMs);
    return beginEnd(manager, verbs);
}

} // namespace vlbase::platform

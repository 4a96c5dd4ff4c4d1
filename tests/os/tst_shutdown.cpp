// Shutdown and restart against a login service of the test's own, on a bus of the test's own. The
// machine's bus is out of reach: all processes here know no other address than the private one.
//
// This program has two roles besides the test: "service", which answers as it is told and prints
// what it was asked, and "caller", which asks for the end of the system.

#include <VLBase/os/velaos.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QtTest>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace {

const char* const addressVariable = "DBUS_SYSTEM_BUS_ADDRESS";
const QString errorPrefix = QStringLiteral("org.freedesktop.DBus.Error.");

void printLine(const QString& line)
{
    std::puts(qPrintable(line));
    std::fflush(stdout);
}

class LoginService : public QDBusVirtualObject
{
public:
    /// "PowerOff=AccessDenied": what it answers to a method, a text or the name of an error.
    explicit LoginService(const QStringList& answers)
        : m_answers(answers)
    {
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        const QString argument = message.arguments().value(0).toString();
        printLine(message.member() + u'(' + argument + u')');
        const QString answer = m_answers.filter(QRegularExpression(u'^' + message.member() + u'='))
                                   .value(0, QStringLiteral("=UnknownMethod"))
                                   .section(u'=', 1);
        if (answer == u"(dies)")
            std::_Exit(0);
        return bus.send(answer.isEmpty() || answer[0].isLower()
                            ? message.createReply(answer)
                            : message.createErrorReply(errorPrefix + answer, QString()));
    }

private:
    const QStringList m_answers;
};

int runService(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    LoginService service(app.arguments().mid(2));
    QDBusConnection bus =
        QDBusConnection::connectToBus(qEnvironmentVariable(addressVariable), QStringLiteral("s"));
    if (!bus.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), &service) ||
        !bus.registerService(QStringLiteral("org.freedesktop.login1")))
        return 1;
    printLine(QStringLiteral("ready"));
    return QCoreApplication::exec();
}

/// As an application, or, for a restart, as a program that is none.
int runCaller(int argc, char* argv[])
{
    const bool isRestart = std::strcmp(argv[2], "restart") == 0;
    std::optional<QCoreApplication> app;
    if (!isRestart)
        app.emplace(argc, argv);
    IVelaOS& os = VelaOS::Get();
    QElapsedTimer timer;
    timer.start();
    const bool isDone = isRestart ? os.RebootOS() : os.ShutdownOS();
    const bool hasWaited = timer.elapsed() >= 2000;
    printLine(QStringLiteral("%1, %2").arg(
        isDone ? QStringLiteral("done")
               : QString::fromLocal8Bit(std::strerror(int(os.GetLastError()))),
        hasWaited ? QStringLiteral("waited") : QStringLiteral("at once")));
    return 0;
}

} // namespace

class TestShutdown : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_address = QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("bus"));

    void startRole(QProcess& process, const QString& role, const char* arguments)
    {
        QCOMPARE(qEnvironmentVariable(addressVariable), m_address);
        process.start(QCoreApplication::applicationFilePath(),
                      QStringList(role) + QString::fromLatin1(arguments).split(u' '));
        QVERIFY(process.waitForStarted());
    }

    void call(const char* what, int code, bool hasWaited)
    {
        QProcess caller;
        startRole(caller, QStringLiteral("caller"), what);
        QVERIFY(caller.waitForFinished());
        const QByteArray outcome = code == 0 ? "done" : std::strerror(code);
        QCOMPARE(caller.readAllStandardOutput(),
                 outcome + (hasWaited ? ", waited\n" : ", at once\n"));
        QCOMPARE(caller.readAllStandardError(), "");
    }

private slots:
    void initTestCase() { qputenv(addressVariable, m_address.toUtf8()); }

    void asksTheService()
    {
        call("shutdown", ENOTCONN, false);

        QFile configuration(m_folder.filePath(QStringLiteral("bus.conf")));
        QVERIFY(configuration.open(QIODevice::WriteOnly));
        configuration.write("<busconfig><type>system</type><listen>" + m_address.toUtf8() +
                            "</listen><policy context='default'><allow user='*'/><allow own='*'/>"
                            "<allow send_destination='*'/><allow receive_sender='*'/></policy>"
                            "</busconfig>");
        configuration.close();
        QProcess bus;
        bus.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                   QStringLiteral("--config-file=") + configuration.fileName()});
        QVERIFY2(bus.waitForReadyRead(), bus.readAllStandardError());
        call("shutdown", ENOSYS, false);

        struct
        {
            const char* call;
            const char* answers;
            QByteArray asked;
            int code;
            bool hasWaited;
        } const cases[] = {
            {"shutdown", "CanPowerOff=na", "CanPowerOff()", EPERM, false},
            {"restart", "CanReboot=challenge", "CanReboot()", EPERM, false},
            {"shutdown",
             "CanPowerOff=yes PowerOffWithFlags=", "CanPowerOff() PowerOffWithFlags(16)", 0, true},
            {"restart", "CanReboot=yes Reboot=", "CanReboot() RebootWithFlags(16) Reboot(false)", 0,
             true},
            {"shutdown", "CanPowerOff=yes PowerOffWithFlags=InvalidArgs PowerOff=AccessDenied",
             "CanPowerOff() PowerOffWithFlags(16) PowerOff(false)", EPERM, true},
            // Perhaps it died of the end of the system: not asked for twice.
            {"shutdown", "CanPowerOff=yes PowerOffWithFlags=(dies)",
             "CanPowerOff() PowerOffWithFlags(16)", ETIMEDOUT, true},
        };
        for (const auto& row : cases) {
            QProcess service;
            startRole(service, QStringLiteral("service"), row.answers);
            QVERIFY(service.waitForReadyRead());
            QCOMPARE(service.readAllStandardOutput(), "ready\n");
            call(row.call, row.code, row.hasWaited);
            service.kill();
            QVERIFY(service.waitForFinished());
            QCOMPARE(service.readAllStandardOutput().trimmed().replace('\n', ' '), row.asked);
        }
        bus.kill();
        QVERIFY(bus.waitForFinished());
    }
};

int main(int argc, char* argv[])
{
    if (argc > 1 && std::strcmp(argv[1], "service") == 0)
        return runService(argc, argv);
    if (argc > 2 && std::strcmp(argv[1], "caller") == 0)
        return runCaller(argc, argv);
    QCoreApplication app(argc, argv);
    TestShutdown test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_shutdown.moc"

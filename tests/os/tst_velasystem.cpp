// What the service says about this machine, against what the test knows of it by other ways.

#include <VLBase/os/velaos.h>
#include <VLBase/os/velasystem.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHostInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryFile>
#include <QTest>

#include <cstdio>
#include <cstring>
#include <limits>

namespace {

#ifdef Q_OS_WIN
constexpr bool onWindows = true;
const QString knownLibrary = QStringLiteral("Qt6Core.dll");
#else
constexpr bool onWindows = false;
const QString knownLibrary = QStringLiteral("libQt6Core.so.6");
#endif

IVelaOS& os()
{
    return VelaOS::Get();
}

int waitForEndOfInput()
{
    std::puts("ready");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 1;
}

} // namespace

class TestVelaSystem : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { VelaOS::Get(); }

    void libraries()
    {
        const quint64 library = os().LoadLibraryDll(knownLibrary);
        QVERIFY(library != 0);
        const auto version = os().GetProcAddress(library, QStringLiteral("qVersion"));
        QVERIFY(version != nullptr);
        using Version = const char* (*)();
        const auto call = reinterpret_cast<Version>(reinterpret_cast<void (*)()>(version));
        QCOMPARE(call(), qVersion());
        os().SetLastError(0);
        QVERIFY(os().GetProcAddress(library, QStringLiteral("no such function")) == nullptr);
        QVERIFY(os().GetLastError() != 0);
        QVERIFY(os().FreeLibrary(library));

        os().SetLastError(0);
        QCOMPARE(os().LoadLibraryDll(QStringLiteral("no such library")), quint64{0});
        QVERIFY(os().GetLastError() != 0);
        QCOMPARE(os().LoadLibraryDll(QString()), quint64{0});
        QVERIFY(!os().FreeLibrary(0));
        QVERIFY(os().GetProcAddress(0, QStringLiteral("qVersion")) == nullptr);
        // The program's own loads on Windows are freed by whoever asks.
        QCOMPARE(onWindows || !os().FreeLibrary(library), true);
    }

    void addresses_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<quint32>("native");
        QTest::newRow("mixed") << QStringLiteral("10.1.2.3") << quint32{0x0302010A};
        QTest::newRow("loopback") << QStringLiteral("127.0.0.1") << quint32{0x0100007F};
        QTest::newRow("all ones") << QStringLiteral("255.255.255.254") << quint32{0xFEFFFFFF};
        QTest::newRow("none") << QStringLiteral("0.0.0.0") << quint32{0};
    }

    void addresses()
    {
        QFETCH(QString, text);
        QFETCH(quint32, native);
        QCOMPARE(os().GetNativeAddressByHostName(text), native);
        QCOMPARE(IVelaOS::GetNativeAddressByHostNameStatic(text), native);
        QCOMPARE(os().GetIpAddressByNativeAddress(native), text);
    }

    void hosts()
    {
        const QString unknown = QStringLiteral("no-such-host.invalid");
        QString text = QStringLiteral("old");
        QVERIFY(os().GetAdressByHostName(unknown, text) != QHostInfo::NoError);
        QCOMPARE(text, unknown);
        QVERIFY(os().GetHostNameByAdress(unknown, text) != QHostInfo::NoError);
        QCOMPARE(text, QString());
        QCOMPARE(os().GetNativeAddressByHostName(unknown), 0U);
        QCOMPARE(os().GetNativeAddressByHostName(QStringLiteral("::1")), 0U);

        const QString local = QStringLiteral("localhost");
        QCOMPARE(os().GetAdressByHostName(local, text), int{QHostInfo::NoError});
        const QStringList found = text.split(QLatin1Char(','));
        QVERIFY2(found.contains(QStringLiteral("127.0.0.1")), qPrintable(text));
        QVERIFY(!found.contains(QString()));
        QCOMPARE(os().GetNativeAddressByHostName(local), 0x0100007FU);

        // In and out may be one object.
        text = QStringLiteral("127.0.0.1");
        QCOMPARE(os().GetHostNameByAdress(text, text), int{QHostInfo::NoError});
        QCOMPARE(text, QHostInfo::fromName(QStringLiteral("127.0.0.1")).hostName());
    }

    void identity()
    {
        const QString computer = QString::fromStdWString(os().GetWorkStationName());
        QVERIFY(!computer.isEmpty());
        QCOMPARE(QString::fromStdWString(os().GetWorkStationName()), computer);

        const std::wstring user = os().GetUserLoginName();
        const QString identifier = QString::fromStdWString(os().GetUserSID(user));
        if (onWindows) {
            QCOMPARE(computer.toUpper(), qEnvironmentVariable("COMPUTERNAME").toUpper());
            QCOMPARE(QString::fromStdWString(user), qEnvironmentVariable("USERNAME"));
            QVERIFY2(identifier.startsWith(QLatin1String("S-1-5-")), qPrintable(identifier));
        } else {
            QTemporaryFile own; // belongs to the user of this process
            QVERIFY(own.open());
            const QFileInfo info(own);
            QCOMPARE(computer, QSysInfo::machineHostName());
            QCOMPARE(QString::fromStdWString(user), info.owner());
            QCOMPARE(identifier, QStringLiteral("S-1-22-1-%1").arg(info.ownerId()));
        }
        QVERIFY(os().GetUserSID(L"no such account").empty());
        QVERIFY(os().GetUserSID(L"").empty());
    }

    void directories()
    {
        const QString temporary = QString::fromStdWString(os().GetTempDir());
        QVERIFY(QDir::fromNativeSeparators(temporary).endsWith(QLatin1Char('/')));
        QCOMPARE(QDir(temporary).canonicalPath(), QDir::temp().canonicalPath());
        QCOMPARE(QDir::fromNativeSeparators(QString::fromStdWString(os().GetUserDir())),
                 QDir::homePath());
        const QString program = onWindows ? QStringLiteral("kernel32.dll") : QStringLiteral("env");
        QVERIFY(QDir(os().GetSystemPath()).exists(program));
    }

    void environment()
    {
        VelaSystem fresh;
        QVERIFY(fresh.GetEnvironmentVar("VLBASE_UNSET") == nullptr);
        QVERIFY(fresh.GetEnvironmentVar(nullptr) == nullptr);
        for (int length : {3, 5000, 4}) {
            const QByteArray value(length, 'v');
            qputenv("VLBASE_SET", value);
            QCOMPARE(fresh.GetEnvironmentVar("VLBASE_SET"), value.constData());
        }
        QCOMPARE(fresh.GetEnvironmentVar("VLBASE_UNSET"), "");
        QCOMPARE(fresh.GetEnvironmentVar(nullptr), "");
        qunsetenv("VLBASE_SET");
    }

    void uniqueIdentifiers()
    {
        const QRegularExpression form(QRegularExpression::anchoredPattern(
            QStringLiteral("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")));
        const char* buffer = os().CreateUniqueIdAsString();
        QSet<QString> seen;
        for (int i = 0; i < 100; ++i) {
            QCOMPARE(static_cast<const char*>(os().CreateUniqueIdAsString()), buffer);
            const QString id = QString::fromLatin1(buffer);
            QVERIFY2(form.match(id).hasMatch(), buffer);
            seen.insert(id);
        }
        QCOMPARE(seen.size(), 100);
    }

    void commands()
    {
        constexpr const char* end = nullptr;
        const int status = os().Exec("exit", "3", end);
        QCOMPARE(onWindows ? status : status >> 8, 3);
        QCOMPARE(os().Exec("exit 0", end), 0);
        QCOMPARE(os().Exec(end), -1);
    }

    void terminatesProcess()
    {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("wait")});
        QVERIFY(process.waitForReadyRead());
        const int id = static_cast<int>(process.processId());
        QVERIFY(os().TerminateHiddenLegacyProgram(id));
        QVERIFY(process.waitForFinished());
        // Its own end would answer 1.
        QVERIFY(process.exitStatus() == QProcess::CrashExit || process.exitCode() == 0);

        os().SetLastError(0);
        const int tooLargeForAnyProcess = std::numeric_limits<int>::max();
        QVERIFY(!os().TerminateHiddenLegacyProgram(tooLargeForAnyProcess));
        QVERIFY(os().GetLastError() != 0);
        QVERIFY(!os().TerminateHiddenLegacyProgram(0));
    }

    void sleeps()
    {
        QElapsedTimer timer;
        timer.start();
        os().AlertableSleep(-2);
        os().AlertableSleep(0);
        os().AlertableSleep(50);
        QVERIFY(timer.elapsed() >= 49);
    }

    void whatIsMissingSaysSo()
    {
        const auto failed = [](bool answerIsFailure) {
            const bool hasCode = os().GetLastError() != 0;
            os().SetLastError(0);
            return answerIsFailure && hasCode;
        };
        os().SetLastError(0);
        int left = 1, top = 2, right = 3, bottom = 4, show = 5;
        QVERIFY(failed(!os().GetWindowPositions(left, top, right, bottom, show, -1)));
        QVERIFY(left == 1 && top == 2 && right == 3 && bottom == 4 && show == 5);
        int id = 6;
        QVERIFY(failed(!os().StartHiddenLegacyProgram(L"no such program", L"", id)));
        QCOMPARE(id, 6);
        QVERIFY(failed(os().FindProcess(L"no such program") == -1));
        QVERIFY(failed(!os().SetWindowToForeground(QStringLiteral("no such program"))));
    }
};

int main(int argc, char* argv[])
{
    if (argc == 2 && std::strcmp(argv[1], "wait") == 0)
        return waitForEndOfInput();
    QCoreApplication app(argc, argv);
    TestVelaSystem test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_velasystem.moc"

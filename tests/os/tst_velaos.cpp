// The one object of the process: what must hold across its threads, and what it says about this
// machine against what the test knows of it by other ways.

#include "tests/support/program.h"

#include <VLBase/os/internal/velasystem.h>
#include <VLBase/os/velaos.h>
#include <VLBase/platform/debugoutput.h>

#include <QHostInfo>
#include <QtTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

int threadIdBesideSystemHeaders(); // in withsystemheaders.cpp

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

/// Opens what applications reach only by deriving.
class Service : public VelaSystem
{
public:
    using VelaSystem::setAppThread;
    using VelaSystem::SetAppThreadId;
};

constexpr std::size_t threadCount = 4;

template <typename Work> void inThreads(Work work)
{
    std::atomic<std::size_t> waiting{threadCount};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&waiting, &work, i] {
            for (--waiting; waiting > 0;)
                std::this_thread::yield();
            work(i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

/// Made before the service, so destroyed after all that the service could have registered.
struct LateUser
{
    bool enabled = false;
    ~LateUser()
    {
        if (enabled && os().GetTimestamp() > 0 && !os().GetWorkStationName().empty() &&
            std::strcmp(os().GetEnvironmentVar("VLBASE_LATE"), "late") == 0)
            std::fputs(" works", stdout);
    }
} s_lateUser;

int runChild()
{
    s_lateUser.enabled = true;
    qputenv("VLBASE_LATE", "late");
    os().GetEnvironmentVar("VLBASE_LATE");
    vlbase::platform::writeToDebugger(L"a \u00e9 \u20ac b\n");
    std::fputs("ready", stdout);
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 1;
}

} // namespace

class TestVelaOS : public QObject
{
    Q_OBJECT

private slots:
    // Comes first: the process's service must not exist yet.
    void oneObjectForAllThreads()
    {
        std::array<IVelaOS*, threadCount> services{};
        std::array<bool, threadCount> isAppThread{};
        std::array<quint32, threadCount> codes{};
        std::atomic<std::size_t> setBy{0};
        inThreads([&](std::size_t i) {
            services[i] = i % 2 == 0 ? &VelaOS::Get() : &VelaOS::GetInstance();
            isAppThread[i] = services[i]->IsAppThread();
            services[i]->SetLastError(static_cast<quint32>(i) + 5);
            // No call of the system in between, which might leave a code of its own.
            for (++setBy; setBy < threadCount;) {
            }
            codes[i] = services[i]->GetLastError();
        });
        QCOMPARE(std::count(services.begin(), services.end(), &os()), qsizetype{threadCount});
        QCOMPARE(std::count(isAppThread.begin(), isAppThread.end(), true), 1);
        QCOMPARE(codes, (std::array<quint32, threadCount>{5, 6, 7, 8}));
        QVERIFY(!os().IsAppThread() && !os().IsAppThreadOrNoAppThreadExists());
        QCOMPARE(threadIdBesideSystemHeaders(), os().GetCurrentThreadId());

        Service moved;
        QVERIFY(moved.IsAppThread());
        std::thread([&moved] { moved.SetAppThreadId(); }).join();
        QVERIFY(!moved.IsAppThread() && !Service(moved).IsAppThreadOrNoAppThreadExists());
        moved.setAppThread(0);
        QVERIFY(!moved.IsAppThread() && moved.IsAppThreadOrNoAppThreadExists());
    }

    void stampsRiseOverAllThreads()
    {
        std::array<std::vector<quint64>, threadCount> stamps;
        inThreads([&stamps](std::size_t i) {
            for (int n = 0; n < 20000; ++n)
                stamps[i].push_back(os().GetTimestamp());
        });
        std::vector<quint64> all;
        for (const std::vector<quint64>& ofThread : stamps) {
            QVERIFY(std::is_sorted(ofThread.begin(), ofThread.end()));
            all.insert(all.end(), ofThread.begin(), ofThread.end());
        }
        std::sort(all.begin(), all.end());
        // Within a millisecond one after the other, none left out, none twice.
        for (std::size_t n = 1; n < all.size(); ++n)
            QVERIFY(all[n] == all[n - 1] + 1 || (all[n] > all[n - 1] && all[n] % 1000 == 0));
    }

    void clocksTellTheTime()
    {
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        const auto stamp = static_cast<qint64>(os().GetTimestamp());
        const qint64 seconds = os().GetSecTimestamp();
        for (const int duration : {-2, 0, 50})
            os().AlertableSleep(duration);
        const auto milliseconds = static_cast<qint64>(os().GetMSecTimestamp());
        const qint64 after = QDateTime::currentMSecsSinceEpoch();
        QVERIFY(before + 49 <= milliseconds && milliseconds <= after);
        // 80000 stamps of another test may run ahead of the clock, a microsecond each.
        QVERIFY(before * 1000 <= stamp && stamp <= after * 1000 + 80000);
        QVERIFY(before / 1000 <= seconds && seconds <= after / 1000);
        QCOMPARE(os().GetTimezoneOffset(true),
                 QDateTime::currentDateTime().offsetFromUtc() * qint64{1000000});
    }

    // One ends by itself, and its static destructors still call the service; one is terminated.
    void childProcesses()
    {
        for (const bool terminated : {false, true}) {
            QProcess child;
            startThisProgram(child, {QStringLiteral("child")});
            QVERIFY(child.waitForReadyRead());
            if (terminated)
                QVERIFY(os().TerminateHiddenLegacyProgram(static_cast<int>(child.processId())));
            else
                child.closeWriteChannel();
            QVERIFY(awaitEnd(child));
            QCOMPARE(child.readAllStandardOutput(), terminated ? "ready" : "ready works");
            QCOMPARE(child.readAllStandardError(), onWindows ? "" : "a \u00e9 \u20ac b\n");
            QCOMPARE(child.exitCode() == 1, !terminated);
        }
        QCOMPARE(os().Exec("exit", "3", nullptr) >> (onWindows ? 0 : 8), 3);
    }

    void libraries()
    {
        const quint64 library = os().LoadLibraryDll(knownLibrary);
        const auto version = os().GetProcAddress(library, QStringLiteral("qVersion"));
        QVERIFY(library != 0 && version != nullptr);
        using Version = const char* (*)();
        QCOMPARE(reinterpret_cast<Version>(reinterpret_cast<void (*)()>(version))(), qVersion());
        QVERIFY(os().GetProcAddress(0, QStringLiteral("qVersion")) == nullptr);
        QVERIFY(os().FreeLibrary(library));
        // The program's own loads on Windows are freed by whoever asks.
        QVERIFY(!os().FreeLibrary(0) && (onWindows || !os().FreeLibrary(library)));
    }

    void hosts()
    {
        for (const auto& [text, native] :
             {std::pair("10.1.2.3", 0x0302010AU), std::pair("255.255.255.254", 0xFEFFFFFFU)}) {
            QCOMPARE(os().GetNativeAddressByHostName(QLatin1String(text)), native);
            QCOMPARE(os().GetIpAddressByNativeAddress(native), QLatin1String(text));
        }
        const QString unknown = QStringLiteral("no-such-host.invalid");
        QString text = QStringLiteral("old");
        QVERIFY(os().GetAdressByHostName(unknown, text) != QHostInfo::NoError);
        QCOMPARE(text, unknown);
        QVERIFY(os().GetHostNameByAdress(unknown, text) != QHostInfo::NoError);
        QCOMPARE(text, QString());
        QCOMPARE(os().GetNativeAddressByHostName(QStringLiteral("::1")), 0U);

        const QString local = QStringLiteral("localhost");
        QCOMPARE(os().GetNativeAddressByHostName(local), 0x0100007FU);
        QCOMPARE(os().GetAdressByHostName(local, text), int{QHostInfo::NoError});
        const QStringList found = text.split(QLatin1Char(','));
        QVERIFY(found.contains(QStringLiteral("127.0.0.1")) && !found.contains(QString()));
    }

    void userAndMachine()
    {
        const QString computer = QString::fromStdWString(os().GetWorkStationName());
        const QString user = QString::fromStdWString(os().GetUserLoginName());
        const QString identifier = QString::fromStdWString(os().GetUserSID(user.toStdWString()));
        QTemporaryFile own; // belongs to the user of this process
        QVERIFY(own.open());
        const QFileInfo info(own);
        if (onWindows) {
            QCOMPARE(computer.toUpper(), qEnvironmentVariable("COMPUTERNAME").toUpper());
            QCOMPARE(user, qEnvironmentVariable("USERNAME"));
            QVERIFY2(identifier.startsWith(QLatin1String("S-1-5-")), qPrintable(identifier));
        } else {
            QCOMPARE(computer, QSysInfo::machineHostName());
            QCOMPARE(user, info.owner());
            QCOMPARE(identifier, QStringLiteral("S-1-22-1-%1").arg(info.ownerId()));
        }
        QVERIFY(os().GetUserSID(L"no such account").empty() && os().GetUserSID(L"").empty());

        const QString temporary =
            QDir::fromNativeSeparators(QString::fromStdWString(os().GetTempDir()));
        QVERIFY(temporary.endsWith(QLatin1Char('/')));
        QCOMPARE(QDir(temporary).canonicalPath(), QDir::temp().canonicalPath());
        QCOMPARE(QDir(QString::fromStdWString(os().GetUserDir())), QDir::home());
        QVERIFY(QDir(os().GetSystemPath()).exists(QLatin1String(onWindows ? "cmd.exe" : "env")));
    }

    void sharedBuffers()
    {
        VelaSystem fresh;
        QVERIFY(fresh.GetEnvironmentVar("VLBASE_UNSET") == nullptr);
        for (const int length : {3, 5000, 4}) {
            const QByteArray value(length, 'v');
            qputenv("VLBASE_SET", value);
            QCOMPARE(fresh.GetEnvironmentVar("VLBASE_SET"), value.constData());
        }
        QCOMPARE(fresh.GetEnvironmentVar("VLBASE_UNSET"), "");

        const QString form =
            QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$");
        const QByteArray first = os().CreateUniqueIdAsString();
        const char* second = os().CreateUniqueIdAsString();
        QVERIFY(first != second && QString::fromLatin1(second).contains(QRegularExpression(form)));
    }

    void failuresLeaveACode()
    {
        const auto failed = [](bool answerIsFailure) {
            const bool hasCode = os().GetLastError() != 0;
            os().SetLastError(0);
            return answerIsFailure && hasCode;
        };
        const QString none = QStringLiteral("no such thing");
        std::array<int, 6> out{1, 2, 3, 4, 5, 6};
        os().SetLastError(0);
        QVERIFY(failed(os().LoadLibraryDll(none) == 0));
        QVERIFY(failed(!os().GetWindowPositions(out[0], out[1], out[2], out[3], out[4], -1)));
        QVERIFY(failed(!os().StartHiddenLegacyProgram(L"no such thing", L"", out[5])));
        QCOMPARE(out, (std::array<int, 6>{1, 2, 3, 4, 5, 6}));
        QVERIFY(failed(os().FindProcess(L"no such thing") == -1));
        QVERIFY(failed(!os().SetWindowToForeground(none)));
        QVERIFY(failed(!os().TerminateHiddenLegacyProgram(0x7FFFFFFF)));
    }
};

int main(int argc, char* argv[])
{
    if (argc == 2 && std::strcmp(argv[1], "child") == 0)
        return runChild();
    QCoreApplication app(argc, argv);
    TestVelaOS test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_velaos.moc"

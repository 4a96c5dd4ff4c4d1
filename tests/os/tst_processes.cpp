// Programs that are started hidden. This one, copied under a name that no other process has, is
// started and tells over a connection how it finds itself, then does as it is told.

#include <VLBase/os/velaos.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <atomic>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

IVelaOS& os()
{
    return VelaOS::Get();
}

#ifdef Q_OS_WIN

QByteArray faultAtStart()
{
    STARTUPINFOW startup{};
    GetStartupInfoW(&startup);
    const bool isHidden =
        (startup.dwFlags & STARTF_USESHOWWINDOW) != 0 && startup.wShowWindow == SW_HIDE;
    return isHidden ? "none" : "is shown";
}

bool isPriorityHigh()
{
    return GetPriorityClass(GetCurrentProcess()) == HIGH_PRIORITY_CLASS;
}

#else

QByteArray faultAtStart()
{
    if (getsid(0) != getpid() || open("/dev/tty", O_RDWR) >= 0)
        return "shares a session";
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        const QString file =
            QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(descriptor));
        if (file != QLatin1String(descriptor < 3 ? "/dev/null" : ""))
            return "has descriptors";
    }
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    const bool isOff = std::signal(SIGUSR1, SIG_DFL) != SIG_DFL || sigismember(&blocked, SIGUSR2);
    return isOff ? "has signals off" : "none";
}

/// Or at least refused, to a user who may not raise it.
bool isPriorityHigh()
{
    if (os().GetLastError() == EACCES || os().GetLastError() == EPERM)
        return getpriority(PRIO_PROCESS, 0) == 0;
    const QDir threads(QStringLiteral("/proc/self/task"));
    const QStringList ids = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return ids.size() > 1 && std::all_of(ids.begin(), ids.end(), [](const QString& id) {
               return getpriority(PRIO_PROCESS, id.toUInt()) == -10;
           });
}

std::atomic<int> s_childSignals{0};

/// What must not reach the program: an open descriptor, signals ignored and blocked.
void prepareToStart()
{
    dup2(1, 700);
    std::signal(SIGUSR1, SIG_IGN);
    std::signal(SIGCHLD, [](int) { ++s_childSignals; });
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGUSR2);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

#endif

int runHidden(const QByteArray& fault, int argc, char* argv[])
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments().mid(2);
    QTcpSocket starter;
    starter.connectToHost(QHostAddress(QHostAddress::LocalHost), arguments[0].toUShort());
    starter.waitForConnected();
    starter.write(fault + arguments.mid(1).join(u'|').toUtf8());
    std::thread other([] { os().AlertableSleep(60000); });
    while (starter.waitForReadyRead(-1)) {
        if (starter.readAll() == "raise") {
            os().SetPriorityHigh();
            starter.write(isPriorityHigh() ? "high" : "low");
        } else {
            starter.write("busy");
            starter.waitForBytesWritten();
            while (starter.state() == QAbstractSocket::ConnectedState)
                starter.waitForReadyRead(0);
        }
    }
    std::_Exit(0);
}

std::wstring wide(const QString& text)
{
    return text.toStdWString();
}

} // namespace

class TestProcesses : public QObject
{
    Q_OBJECT

private slots:
    void lifeOfAHiddenProgram()
    {
#ifndef Q_OS_WIN
        prepareToStart();
#endif
        const QFileInfo self(QCoreApplication::applicationFilePath());
        const QString name =
            QStringLiteral("tst_OfProcesses%1").arg(QCoreApplication::applicationPid());
        const QString path = self.path() + u'/' + name + u'.' + self.suffix();
        QVERIFY(QFile::copy(self.filePath(), path));
        const auto removeCopy = qScopeGuard(
            [&path] { QVERIFY(QTest::qWaitFor([&path] { return QFile::remove(path); })); });
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));

        const std::wstring program = wide(u'"' + QDir::toNativeSeparators(path) + u'"');
        const QString words =
            QStringLiteral("hidden %1  \"two  words\" \"\" t\"h r\"ee ").arg(server.serverPort());
        // As long as it may be, and one more.
        const QString filling(4094 - static_cast<int>(program.size()) - words.size(), u'f');
        const std::wstring fits = wide(words + filling);
        int id = -7;
        QVERIFY(!os().StartHiddenLegacyProgram(program.c_str(), (fits + L'f').c_str(), id));
        QCOMPARE(id, -7);
        QVERIFY(os().StartHiddenLegacyProgram(program.c_str(), fits.c_str(), id));
        const auto end = qScopeGuard([&id] { os().TerminateHiddenLegacyProgram(id); });
        QVERIFY(server.waitForNewConnection(30000));
        const std::unique_ptr<QTcpSocket> hidden(server.nextPendingConnection());
        const auto tells = [&hidden](const QByteArray& text) {
            while (hidden->bytesAvailable() < text.size() && hidden->waitForReadyRead(30000)) {
            }
            return hidden->readAll() == text;
        };
        QVERIFY(tells("nonetwo  words||th ree|" + filling.toLatin1()));

        QCOMPARE(os().FindProcess(wide(name.mid(5)).c_str()), id);
        hidden->write("raise");
        QVERIFY(tells("high"));
#ifndef Q_OS_WIN // There it is a matter of windows.
        QTRY_VERIFY(os().IsProcessIdle(id));
        hidden->write("work");
        QVERIFY(tells("busy"));
        QVERIFY(!os().IsProcessIdle(id));
#endif
        QVERIFY(os().TerminateHiddenLegacyProgram(id));
        QTRY_COMPARE(os().FindProcess(wide(name.mid(5)).c_str()), -1);
        QVERIFY(!os().TerminateHiddenLegacyProgram(id));
#ifndef Q_OS_WIN
        // An application that waits for any of its children has never met the program.
        QVERIFY(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD);
        QCOMPARE(s_childSignals.load(), 0);
#endif
    }

    void refusals()
    {
        int id = -7;
        for (const wchar_t* program : {L"no such program", L"/no/such/program", L"\"\""}) {
            os().SetLastError(0);
            QVERIFY(!os().StartHiddenLegacyProgram(program, nullptr, id) && id == -7);
            QVERIFY(os().GetLastError() != 0);
        }
        QVERIFY(!os().StartHiddenLegacyProgram(nullptr, L"", id));
        std::vector<int> nobody = {0, -1, 0x7FFFFFFE};
#ifndef Q_OS_WIN
        const pid_t ended = fork(); // and still to be asked for
        if (ended == 0)
            _exit(0);
        siginfo_t about{};
        waitid(P_PID, static_cast<id_t>(ended), &about, WEXITED | WNOWAIT);
        nobody.push_back(ended);
        const auto ask = qScopeGuard([ended] { waitpid(ended, nullptr, 0); });
#endif
        for (const int none : nobody)
            QVERIFY(os().IsProcessIdle(none) && !os().TerminateHiddenLegacyProgram(none));
        // Case matters, and so does every letter.
        QVERIFY(os().FindProcess(L"st_processes") > 0 && os().FindProcess(L"") > 0);
        QVERIFY(os().FindProcess(L"ST_PROCESSES") == -1 && os().FindProcess(L"processez") == -1);
    }
};

int main(int argc, char* argv[])
{
    if (argc > 2 && std::strcmp(argv[1], "hidden") == 0)
        return runHidden(faultAtStart(), argc, argv);
    QCoreApplication app(argc, argv);
    TestProcesses test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_processes.moc"

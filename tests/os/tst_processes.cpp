// Programs that are started hidden. This one, copied under a name that no other process has, is
// started and tells over a connection how it finds itself, then does as it is told.

#include <VLBase/os/velaos.h>

#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <atomic>
#include <cstring>
#include <memory>
#include <thread>

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
    if ((startup.dwFlags & STARTF_USESHOWWINDOW) == 0 || startup.wShowWindow != SW_HIDE)
        return "shows a window";
    return "none";
}

bool isPriorityHigh()
{
    return GetPriorityClass(GetCurrentProcess()) == HIGH_PRIORITY_CLASS;
}

void prepareToStart() {}
void checkChildren() {}

#else

QByteArray faultAtStart()
{
    if (getsid(0) != getpid() || open("/dev/tty", O_RDWR) >= 0)
        return "shares a session";
    for (const int stream : {0, 1, 2}) {
        const QString file = QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(stream));
        if (file != u"/dev/null")
            return "has streams";
    }
    for (int descriptor = 3; descriptor < 1024; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) != -1)
            return "has a descriptor";
    }
    struct sigaction action
    {
    };
    sigaction(SIGUSR1, nullptr, &action);
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    if (action.sa_handler != SIG_DFL || sigismember(&blocked, SIGUSR2) != 0)
        return "has signals off";
    return "none";
}

/// Or at least refused, to a user who may not raise it.
bool isPriorityHigh()
{
    if (getpriority(PRIO_PROCESS, 0) == 0)
        return os().GetLastError() == EACCES || os().GetLastError() == EPERM;
    bool isHigh = true;
    for (const QString& thread : QDir(QStringLiteral("/proc/self/task")).entryList({}, QDir::Dirs))
        isHigh = isHigh &&
                 (thread.startsWith(u'.') || getpriority(PRIO_PROCESS, thread.toUInt()) == -10);
    return isHigh;
}

std::atomic<int> s_childSignals{0};

/// What must not reach the program: an open descriptor, signals ignored and blocked.
void prepareToStart()
{
    QVERIFY(dup2(1, 700) == 700);
    std::signal(SIGUSR1, SIG_IGN);
    std::signal(SIGCHLD, [](int) { ++s_childSignals; });
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGUSR2);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

/// An application that waits for any of its children never meets the program.
void checkChildren()
{
    QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
    QCOMPARE(errno, ECHILD);
    QCOMPARE(s_childSignals.load(), 0);
}

#endif

int runHidden(const QByteArray& fault, int argc, char* argv[])
{
    const QCoreApplication app(argc, argv);
    QStringList arguments = app.arguments().mid(2);
    QTcpSocket starter;
    starter.connectToHost(QHostAddress(QHostAddress::LocalHost), arguments.takeFirst().toUShort());
    if (!starter.waitForConnected(30000))
        return 1;
    starter.write(fault + '|' + arguments.join(u'|').toUtf8() + '\n');
    starter.flush();
    while (starter.waitForReadyRead(-1)) {
        const QByteArray order = starter.readAll();
        std::atomic<bool> isDone{false};
        std::thread other([&] {
            while (!isDone)
                std::this_thread::yield();
        });
        if (order == "raise") {
            os().SetPriorityHigh();
            starter.write(isPriorityHigh() ? "high\n" : "low\n");
            isDone = true;
        } else {
            starter.write("busy\n");
        }
        starter.flush();
        other.join();
    }
    return 0;
}

} // namespace

class TestProcesses : public QObject
{
    Q_OBJECT

private:
    QTcpServer m_server;
    std::unique_ptr<QTcpSocket> m_program;
    QString m_path;
    std::wstring m_name;
    int m_processId = -7;

    QByteArray readLine()
    {
        while (!m_program->canReadLine() && m_program->waitForReadyRead(30000)) {
        }
        return m_program->readLine().trimmed();
    }

private slots:
    void initTestCase()
    {
        const QFileInfo self(QCoreApplication::applicationFilePath());
        const QString name = QStringLiteral("tst_OfProcesses%1").arg(QCoreApplication::applicationPid());
        m_path = self.path() + u'/' + name + u'.' + self.suffix();
        m_name = name.mid(4).toStdWString();
        QVERIFY(QFile::copy(self.filePath(), m_path));
        QVERIFY(m_server.listen(QHostAddress::LocalHost));
    }

    void cleanupTestCase()
    {
        os().TerminateHiddenLegacyProgram(m_processId); // where a check failed it lives still
        QVERIFY(QTest::qWaitFor([this] { return QFile::remove(m_path); }));
    }

    void lifeOfAHiddenProgram()
    {
        prepareToStart();
        const QString program = u'"' + QDir::toNativeSeparators(m_path) + u'"';
        const QString words =
            QStringLiteral("hidden %1  \"two  words\" \"\" t\"h r\"ee ").arg(m_server.serverPort());
        // As long as it may be, and one more.
        const QString filling(4095 - program.size() - 1 - words.size(), u'f');
        QVERIFY(!os().StartHiddenLegacyProgram(program.toStdWString().c_str(),
                                               (words + filling + u'f').toStdWString().c_str(),
                                               m_processId));
        QCOMPARE(m_processId, -7);
        QVERIFY(os().StartHiddenLegacyProgram(
            program.toStdWString().c_str(), (words + filling).toStdWString().c_str(), m_processId));
        QVERIFY(m_server.waitForNewConnection(30000));
        m_program.reset(m_server.nextPendingConnection());
        QCOMPARE(readLine(), "none|two  words||th ree|" + filling.toLatin1());

        QCOMPARE(os().FindProcess(m_name.c_str()), m_processId);
        m_program->write("raise");
        QCOMPARE(readLine(), "high");
#ifndef Q_OS_WIN // There it is a matter of windows.
        QTRY_VERIFY(os().IsProcessIdle(m_processId));
#endif
        m_program->write("work");
        QCOMPARE(readLine(), "busy");
#ifndef Q_OS_WIN
        QVERIFY(!os().IsProcessIdle(m_processId));
#endif

        QVERIFY(os().TerminateHiddenLegacyProgram(m_processId));
        QVERIFY(m_program->state() != QAbstractSocket::ConnectedState ||
                m_program->waitForDisconnected(30000));
        QTRY_COMPARE(os().FindProcess(m_name.c_str()), -1);
        checkChildren();
    }

    void refusals()
    {
        int processId = -7;
        for (const wchar_t* program : {L"no such program", L"/no/such/program", L"\"\""}) {
            os().SetLastError(0);
            QVERIFY(!os().StartHiddenLegacyProgram(program, L"", processId));
            QVERIFY(os().GetLastError() != 0);
        }
        QVERIFY(!os().StartHiddenLegacyProgram(nullptr, nullptr, processId));
        QCOMPARE(processId, -7);
        for (const int none : {0, -1, 0x7FFFFFFE}) {
            QVERIFY(os().IsProcessIdle(none));
            QVERIFY(!os().TerminateHiddenLegacyProgram(none));
        }
        // Case matters, and so does every letter.
        const QString self = QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
        QVERIFY(os().FindProcess(self.toStdWString().c_str()) > 0);
        QVERIFY(os().FindProcess(L"") > 0);
        QCOMPARE(os().FindProcess(self.toUpper().toStdWString().c_str()), -1);
        QCOMPARE(os().FindProcess((self + u'z').toStdWString().c_str()), -1);
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

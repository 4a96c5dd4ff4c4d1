#include "../support/privatetemp.h"
#include "tests/support/program.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/ilogtracer.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QProcess>
#include <QtTest>

#include <atomic>
#include <cstdlib>
#include <thread>

// How a process ends that reports to the last: the program starts itself again in a role, and the
// text log that the role leaves behind tells the rest.

namespace {

void reportBothWays(const char* text)
{
    const QString name = QString::fromLatin1(text);
    ErrorHandler::Interface()->ProtocolException(
        VLException(name + QStringLiteral(" at once"), QString(), QString(), QString(), 1, 2));
    ErrorHandler::Interface()->ProtocolMessage(name + QStringLiteral(" queued"), QString(),
                                               QString(), QString(), 1, 255);
}

// Reports from its destructor, which runs before or after the application is gone.
struct ReportsAtItsEnd
{
    const char* text = nullptr;
    ~ReportsAtItsEnd()
    {
        if (text)
            reportBothWays(text);
    }
};

ReportsAtItsEnd madeBeforeTheHandler;

class ClosedTracer : public ILogTracer
{
public:
    ~ClosedTracer() override { reportBothWays("tracer"); }
    void SendDataTrace(QString) override {}
    void ReportException(QString) override {}
    bool IsOpen() override { return false; }
};

void reportWithoutApplication(int, char**)
{
    madeBeforeTheHandler.text = "static";
    reportBothWays("main");
}

void reportUntilTheEnd(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    static ReportsAtItsEnd madeAfterTheHandler;
    madeBeforeTheHandler.text = "static";
    madeAfterTheHandler.text = "local static";
    ErrorHandler::SetLogTracer(std::make_unique<ClosedTracer>());
    reportBothWays("main");
}

void reportInSeveralApplications(int argc, char** argv)
{
    for (const char* text : {"first", "second", "third"}) {
        const QCoreApplication application(argc, argv);
        reportBothWays(text);
    }
}

// Ends while the application lives.
void exitInTheMiddle(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    reportBothWays("main");
    std::exit(0);
}

void exitInAnotherThread(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    reportBothWays("main");
    std::thread([] { std::exit(0); }).join();
}

void reportFromAThreadAfterTheEnd(int argc, char** argv)
{
    {
        const QCoreApplication application(argc, argv);
        reportBothWays("main");
    }
    std::thread([] {
        reportBothWays("late");
        reportBothWays("later");
    }).join();
}

void endTheThreadOfTheHandler(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    std::thread([] { reportBothWays("its thread"); }).join();
    reportBothWays("main");
    reportBothWays("main again");
}

void leaveThreadsRunning(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    static std::atomic<int> reported = 0;
    for (int i = 0; i < 4; ++i) {
        std::thread([] {
            for (;;) {
                reportBothWays("thread");
                ++reported;
            }
        }).detach();
    }
    while (reported < 100)
        std::this_thread::yield();
}

// What a role logs at least, in this order.
struct Role
{
    void (*run)(int argc, char** argv);
    std::vector<const char*> logged;
};

const Role roles[] = {
    {reportUntilTheEnd,
     {"main at once", "main queued", "local static at once", "local static queued",
      "static at once", "static queued", "tracer at once", "tracer queued"}},
    {reportWithoutApplication, {"main at once", "static at once"}},
    {reportInSeveralApplications,
     {"first at once", "first queued", "second at once", "second queued", "third at once",
      "third queued"}},
    {exitInTheMiddle, {"main at once", "main queued"}},
    {exitInAnotherThread, {"main at once", "main queued"}},
    {reportFromAThreadAfterTheEnd,
     {"main at once", "main queued", "late at once", "late queued", "later at once",
      "later queued"}},
    {endTheThreadOfTheHandler,
     {"its thread at once", "its thread queued", "main at once", "main queued",
      "main again at once", "main again queued"}},
    {leaveThreadsRunning, {"thread at once"}},
};

} // namespace

class UnloadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsCleanly()
    {
        const PrivateTemp temp; // the roles inherit it
        for (const Role& role : roles) {
            QProcess process;
            process.setProcessChannelMode(QProcess::ForwardedChannels);
            startThisProgram(process, {QStringLiteral("--role"), QString::number(&role - roles)});
            QVERIFY(awaitEnd(process));
            QCOMPARE(process.exitStatus(), QProcess::NormalExit);
            QCOMPARE(process.exitCode(), 0);

            QFile file(temp.filePath(QStringLiteral("Logger.txt")));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray log = file.readAll();
            QVERIFY(file.remove());
            qsizetype position = 0;
            for (const char* text : role.logged) {
                position = log.indexOf('\t' + QByteArray(text) + " in file", position);
                QVERIFY2(position >= 0, text);
            }
        }
    }
};

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--role") == 0) {
        roles[QByteArray(argv[2]).toInt()].run(argc, argv);
        return 0;
    }
    const QCoreApplication application(argc, argv);
    UnloadTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_unload.moc"

#include "../support/privatetemp.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/ilogtracer.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QProcess>
#include <QtTest>

#include <atomic>
#include <thread>

// How a process ends that reports to the last: the program starts itself again in a role, and the
// text log that the role leaves behind tells the rest.

namespace {

void reportBothWays(const QString& text)
{
    ErrorHandler::Interface()->ProtocolException(
        VLException(text + QStringLiteral(" at once"), QString(), QString(), QString(), 1, 2));
    ErrorHandler::Interface()->ProtocolMessage(text + QStringLiteral(" queued"), QString(),
                                               QString(), QString(), 1, 255);
}

// Reports from its destructor, which runs before or after the application is gone.
struct ReportsAtItsEnd
{
    QString text;
    ~ReportsAtItsEnd()
    {
        if (!text.isEmpty())
            reportBothWays(text);
    }
};

ReportsAtItsEnd madeBeforeTheHandler;

class ClosedTracer : public ILogTracer
{
public:
    ~ClosedTracer() override { reportBothWays(QStringLiteral("tracer")); }
    void SendDataTrace(QString) override {}
    void ReportException(QString) override {}
    bool IsOpen() override { return false; }
};

int reportWithoutApplication()
{
    madeBeforeTheHandler.text = QStringLiteral("static");
    reportBothWays(QStringLiteral("main"));
    return 0;
}

int reportUntilTheEnd(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    static ReportsAtItsEnd madeAfterTheHandler;
    madeBeforeTheHandler.text = QStringLiteral("static");
    madeAfterTheHandler.text = QStringLiteral("local static");
    ErrorHandler::SetLogTracer(std::make_unique<ClosedTracer>());
    reportBothWays(QStringLiteral("main"));
    return 0;
}

int leaveThreadsRunning(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    static std::atomic<int> reported = 0;
    for (int i = 0; i < 4; ++i) {
        std::thread([] {
            for (;;) {
                reportBothWays(QStringLiteral("thread"));
                ++reported;
            }
        }).detach();
    }
    while (reported < 100)
        std::this_thread::yield();
    return 0;
}

} // namespace

class UnloadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsCleanly_data();
    void endsCleanly();

private:
    PrivateTemp m_temp; // the roles inherit it
};

void UnloadTest::endsCleanly_data()
{
    QTest::addColumn<QString>("role");
    QTest::addColumn<QStringList>("logged");
    QTest::newRow("reports from the last destructors")
        << QStringLiteral("last")
        << QStringList{
               QStringLiteral("main at once"),         QStringLiteral("main queued"),
               QStringLiteral("local static at once"), QStringLiteral("local static queued"),
               QStringLiteral("static at once"),       QStringLiteral("static queued"),
               QStringLiteral("tracer at once"),       QStringLiteral("tracer queued")};
    QTest::newRow("no application")
        << QStringLiteral("bare")
        << QStringList{QStringLiteral("main at once"), QStringLiteral("static at once")};
    QTest::newRow("threads go on reporting")
        << QStringLiteral("threads") << QStringList{QStringLiteral("thread at once")};
}

void UnloadTest::endsCleanly()
{
    QFETCH(QString, role);
    QFETCH(QStringList, logged);
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--role"), role});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);

    QFile file(m_temp.filePath(QStringLiteral("Logger.txt")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString log = QString::fromUtf8(file.readAll());
    QVERIFY(file.remove());
    qsizetype position = 0;
    for (const QString& text : logged) {
        position = log.indexOf(QLatin1Char('\t') + text + QLatin1String(" in file"), position);
        QVERIFY2(position >= 0, qPrintable(text));
    }
}

int main(int argc, char** argv)
{
    const QByteArray role = argc == 3 ? argv[2] : "";
    if (role == "last")
        return reportUntilTheEnd(argc, argv);
    if (role == "bare")
        return reportWithoutApplication();
    if (role == "threads")
        return leaveThreadsRunning(argc, argv);

    const QCoreApplication application(argc, argv);
    UnloadTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_unload.moc"

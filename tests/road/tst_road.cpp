// One failure, followed from its source to every sink, across two processes: this one fails and
// shows, a second one owns the log.

#include "../support/notingdialog.h"
#include "../support/privatetemp.h"
#include "tests/support/program.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/message.h>
#include <VLBase/errorhandling/messagelist.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logtracer.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QHostInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <cstdio>

namespace {

constexpr int limitMs = 30'000;

/// Owns the log; for each line of its input it drains once and prints what came, a line each,
/// then an empty line.
int runOwner(const QString& instance)
{
    setLogInstance(instance);
    vlbase::logging::LogOwner owner(64 * 1024);
    std::puts(owner.IsOpen() ? "open" : "closed");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
        owner.drain();
        for (auto lines = owner.pending(); !lines.empty(); lines = owner.pending()) {
            for (const char c : lines)
                std::putchar(c ? c : '\n');
            owner.markWritten(lines.size());
        }
        std::putchar('\n');
        std::fflush(stdout);
    }
    return 0;
}

QStringList linesOf(CLiveLogReader& reader)
{
    char* data = nullptr;
    long length = 0;
    reader.GetBuffer(&data, &length);
    const QString text = QString::fromUtf8(data, static_cast<int>(length));
    reader.ReleaseBuffer();
    return text.split(QChar(u'\0'), Qt::SkipEmptyParts);
}

QString logText(const PrivateTemp& directory)
{
    QFile file(directory.filePath(QStringLiteral("Logger.txt")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void failOnce(const char* reason)
{
    try {
        throw VLException(std::string(reason), "stations/station", "Receiver", "tune", 42, 7);
    } catch (VLException& failure) {
        ErrorHandler::Interface()->ProtocolException(failure);
        ErrorHandler::Interface()->PostErrorDialog(failure, false, -1, false);
    }
}

} // namespace

class RoadTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void withoutAnOwnerTheTextFileTakesIt();
    void withAnOwnerEverySinkInItsOrder();
    void queuedReportsTakeTheSameRoad();

private:
    QStringList drainedByOwner();

    PrivateTemp m_directory;
    QProcess m_owner;
    QStringList m_shown;
    QString m_instance = QStringLiteral("road-%1").arg(QCoreApplication::applicationPid());
};

void RoadTest::initTestCase()
{
    QVERIFY(setLogInstance(m_instance));
    // With what the list of messages had got by then.
    ErrorHandler::SetMessageDlg(std::make_unique<NotingDialog>([this](const QString& note) {
        const auto& messages = ErrorHandler::Instance().GetMessages()->GetList();
        m_shown += QStringLiteral("%1 after %2 messages").arg(note).arg(messages.size());
    }));
}

void RoadTest::cleanupTestCase()
{
    ErrorHandler::SetMessageDlg(nullptr);
    ErrorHandler::SetLogTracer(nullptr);
    m_owner.closeWriteChannel();
    QVERIFY(awaitEnd(m_owner, limitMs));
}

QStringList RoadTest::drainedByOwner()
{
    m_owner.write("\n");
    QByteArray text;
    while (!text.endsWith("\n\n") && text != "\n" && m_owner.waitForReadyRead(limitMs))
        text += m_owner.readAll().replace("\r\n", "\n");
    return QString::fromUtf8(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void RoadTest::withoutAnOwnerTheTextFileTakesIt()
{
    ErrorHandler::SetLogTracer(std::make_unique<CLogTracer>());

    failOnce("no owner yet");

    QVERIFY(!ErrorHandler::GetLogTracer()->IsOpen());
    const QRegularExpression line(QStringLiteral("^Error::\\t\\d\\d:\\d\\d:\\d\\d:\\tno owner yet "
                                                 "in file stations/station in class Receiver "
                                                 "in method tune in line 42\\r?\\n\\r?\\n$"));
    QVERIFY2(line.match(logText(m_directory)).hasMatch(), qPrintable(logText(m_directory)));
    QCOMPARE(m_shown.takeFirst(),
             QStringLiteral("PostException(no owner yet@stations/station@Receiver@tune@42@7,1,00,"
                            "-1) after 1 messages"));
}

void RoadTest::withAnOwnerEverySinkInItsOrder()
{
    startThisProgram(m_owner, {QStringLiteral("owner"), m_instance});
    QVERIFY(m_owner.waitForReadyRead(limitMs));
    QCOMPARE(m_owner.readLine().trimmed(), QByteArrayLiteral("open"));
    const QString before = logText(m_directory);
    ErrorHandler::SetLogTracer(std::make_unique<CLogTracer>());
    CLiveLogReader reader;
    QVERIFY(ErrorHandler::GetLogTracer()->IsOpen());
    QVERIFY(reader.IsOpen());

    failOnce("antenna lost");

    QCOMPARE(logText(m_directory), before);
    const auto& messages = ErrorHandler::Instance().GetMessages()->GetList();
    QVERIFY(messages.front()->GetText().startsWith(
        QStringLiteral("!@antenna lost@stations/station@42@Receiver@tune@")));
    QVERIFY(m_shown.last().contains(QStringLiteral("(antenna lost@")));
    QVERIFY(m_shown.takeFirst().endsWith(QStringLiteral("after 2 messages")));

    const QStringList filed = drainedByOwner();
    QCOMPARE(linesOf(reader), filed);
    QCOMPARE(filed.size(), 1);
    const QStringList fields = filed.first().split(QLatin1Char('\t'));
    QCOMPARE(fields.size(), 9);
    QCOMPARE(fields.at(0), QStringLiteral("100000"));
    QVERIFY(QDateTime::fromString(fields.at(1), QStringLiteral("yyyy-MM-dd hh:mm:ss")).isValid());
    QVERIFY(fields.at(2).startsWith(QStringLiteral("UTC: ")));
    QCOMPARE(fields.at(3), QHostInfo::localHostName());
    QCOMPARE(fields.mid(4, 3), QStringList({QStringLiteral("Module Unknown"),
                                            QStringLiteral("Data"), QStringLiteral("Trace")}));
    QCOMPARE(fields.at(7), messages.front()->GetText().simplified());
    QCOMPARE(fields.at(8), QString());
}

void RoadTest::queuedReportsTakeTheSameRoad()
{
    ErrorHandler::Interface()->ProtocolMessage(
        QStringLiteral("retuned"), QStringLiteral("stations/station"), QStringLiteral("Receiver"),
        QStringLiteral("tune"), 43, 255);
    QCOMPARE(drainedByOwner(), QStringList()); // Not before the handler's thread turns to it.
    QCoreApplication::processEvents();
    const QStringList message = drainedByOwner();
    QCOMPARE(message.size(), 1);
    QVERIFY(
        message.first().contains(QStringLiteral("\tData\tTrace\t@retuned@stations/station@43@")));
    QVERIFY(m_shown.isEmpty());

    _Q_require(L"stations/station", 44);
    const QStringList check = drainedByOwner();
    QCOMPARE(check.size(), 1);
    QVERIFY(check.first().contains(QStringLiteral("!@REQUIREMENT FAILED@stations/station@44@@@")));
    QVERIFY(m_shown.last().contains(QStringLiteral("(REQUIREMENT FAILED@stations/station@@@44@")));
    QVERIFY(m_shown.takeFirst().endsWith(QStringLiteral("after 4 messages")));
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("owner"))
        return runOwner(arguments.value(2));
    RoadTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_road.moc"

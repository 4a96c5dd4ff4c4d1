#include "../support/privatetemp.h"
#include "recordingtracer.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/imessagedialog.h>
#include <VLBase/errorhandling/logfile.h>
#include <VLBase/errorhandling/message.h>
#include <VLBase/errorhandling/messagelist.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QtTest>

#include <functional>
#include <stdexcept>
#include <thread>

namespace {

VLException exceptionOf(const QString& reason)
{
    return VLException(reason, QStringLiteral("f"), QStringLiteral("c"), QStringLiteral("m"), 1, 2);
}

// Writes down every call as "Operation(arguments)" and answers 7.
class NotingDialog : public IMessageDialog
{
public:
    explicit NotingDialog(QStringList& notes)
        : m_notes(notes)
    {
    }
    ~NotingDialog() override { m_notes += QStringLiteral("gone"); }

    int ShowMessage(const QString& text, unsigned char level, bool b1, int n, bool b2,
                    bool b3) override
    {
        note(u"ShowMessage", text, level, b1, n, b2, b3);
        return 7;
    }
    int ShowException(const VLException& exception, unsigned char level, bool b1, int n, bool b2,
                      bool b3) override
    {
        note(u"ShowException", exception.GetErrorReason(), level, b1, n, b2, b3);
        return 7;
    }
    void PostException(VLException& exception, unsigned char level, bool b1, int n,
                       bool b2) override
    {
        note(u"PostException", exception.GetErrorReason(), level, b1, n, b2, false);
    }
    void PostMessage(const QString& text, unsigned char level, bool b1, int n, bool b2) override
    {
        note(u"PostMessage", text, level, b1, n, b2, false);
    }

private:
    void note(QStringView operation, const QString& text, int level, bool b1, int n, bool b2,
              bool b3)
    {
        m_notes += QStringLiteral("%1(%2,%3,%4%5%6,%7)")
                       .arg(operation, text)
                       .arg(level)
                       .arg(int(b1))
                       .arg(int(b2))
                       .arg(int(b3))
                       .arg(n);
    }
    QStringList& m_notes;
};

} // namespace

class ErrorHandlerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void tellsItsConfigurationOnce();
    void keepsTheMask();
    void recordsQueuedReportsInItsThread();
    void recordsExceptionsAtOnce();
    void sendsSingleLines();
    void writesTheTextLogUnlessATracerIsOpen();
    void survivesALogFileThatCannotBe();
    void dropsReportsWhileBlocked();
    void readsMessages_data();
    void readsMessages();
    void endsASearchAfterOneRound();
    void asksTheDialog();
    void swallowsWhatTracerAndDialogThrow();
    void entersATracerOnlyOnce_data();
    void entersATracerOnlyOnce();
    void letsATracerReplaceItself();
    void notifiesUncaughtHandlers();

private:
    static void report(const QString& text, unsigned char level)
    {
        handler().ProtocolMessage(text, QStringLiteral("f"), QStringLiteral("c"),
                                  QStringLiteral("m"), 1, level);
        QCoreApplication::sendPostedEvents();
    }
    static ErrorHandler& handler() { return ErrorHandler::Instance(); }
    static std::size_t recorded() { return handler().GetMessages()->GetList().size(); }
    void install(std::function<void()> answer = {})
    {
        ErrorHandler::SetLogTracer(std::make_unique<RecordingTracer>(m_log, std::move(answer)));
    }
    QByteArray textLog() const
    {
        QFile file(m_temp.filePath(QStringLiteral("Logger.txt")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    PrivateTemp m_temp;
    TracerLog m_log;
};

void ErrorHandlerTest::init()
{
    m_log = TracerLog();
    handler().TurnLogFileOff();
    handler().SetMessageMask(32);
    handler().GetMessages()->SetMaxNumber(0);
    handler().GetMessages()->SetMaxNumber(100);
    handler().GetMessages()->DeleteMessageList();
}

void ErrorHandlerTest::cleanup()
{
    ErrorHandler::SetLogTracer(nullptr);
    ErrorHandler::SetMessageDlg(nullptr);
    handler().TurnLogFileOff();
    QFile::remove(m_temp.filePath(QStringLiteral("Logger.txt")));
}

void ErrorHandlerTest::tellsItsConfigurationOnce()
{
    const QString told =
        QStringLiteral("ErrorHandler::Configure() - MessageMask: 32 Configuration applied");
    QCOMPARE(handler().GetMessageMask(), 32U);
    report(QStringLiteral("before"), 1);
    install();
    QVERIFY(m_log.sent.isEmpty());
    report(QStringLiteral("after"), 1);
    QCOMPARE(m_log.sent.size(), 2);
    QCOMPARE(m_log.sent.first(), told);
    report(QStringLiteral("later"), 1);
    install();
    report(QStringLiteral("other tracer"), 1);
    QCOMPARE(m_log.sent.count(told), 1);
    QCOMPARE(m_log.sent.size(), 4);
}

void ErrorHandlerTest::keepsTheMask()
{
    handler().SetMessageMask(4, true);
    QCOMPARE(handler().GetMessageMask(), 36U);
    handler().SetMessageMask(32, false);
    QCOMPARE(handler().GetMessageMask(), 4U);
    ErrorHandler::Interface()->SetMessageMask(0xFFFFFFFFU);
    QCOMPARE(ErrorHandler::Interface()->GetMessageMask(), 0xFFFFFFFFU);
    handler().SetMessageMask(0);
    install();
    report(QStringLiteral("the handler filters nothing"), 3);
    QCOMPARE(recorded(), std::size_t(1));
}

void ErrorHandlerTest::recordsQueuedReportsInItsThread()
{
    QCOMPARE(handler().thread(), QThread::currentThread());
    install();
    std::thread reporter([] {
        IErrorHandlerBase& base = handler();
        base.trace(QStringLiteral("t"), QStringLiteral("f"), QStringLiteral("c"),
                   QStringLiteral("m"), 65535, 254);
        _Q_Trace(QStringLiteral("second"), QStringLiteral("f"), 2);
    });
    reporter.join();
    QVERIFY(m_log.sent.isEmpty());
    QCOMPARE(recorded(), std::size_t(0));

    QCoreApplication::sendPostedEvents();
    QCOMPARE(m_log.sent.size(), 2);
    QVERIFY(m_log.sent.at(0).startsWith(QStringLiteral("254@t@f@65535@c@m@")));
    QVERIFY(m_log.sent.at(1).startsWith(QStringLiteral("3@second@f@2@@@")));
}

void ErrorHandlerTest::recordsExceptionsAtOnce()
{
    VLException exception = exceptionOf(QStringLiteral("r"));
    exception.SetErrorTime(QTime(1, 2, 3));
    std::thread([&exception] { handler().ProtocolException(exception); }).join();
    QCOMPARE(recorded(), std::size_t(1));
    const Message& message = *handler().GetMessages()->GetList().front();
    QCOMPARE(message.GetText(), QStringLiteral("!@r@f@1@c@m@01:02:03"));
    QCOMPARE(message.GetTimeStamp(), QTime(1, 2, 3));
    QCOMPARE(message.GetWarningLevel(), static_cast<unsigned char>(1));

    handler().ProtocolException(VLArgumentListException());
    QCOMPARE(handler().GetMessages()->GetList().front()->GetText(), QString());
}

void ErrorHandlerTest::sendsSingleLines()
{
    install();
    VLException exception = exceptionOf(QStringLiteral("\n a\tb\r\n\n  c "));
    exception.SetErrorTime(QTime(1, 2, 3));
    handler().ProtocolException(exception);
    QCOMPARE(m_log.sent.last(), QStringLiteral("!@ a b c @f@1@c@m@01:02:03"));
    QVERIFY(handler().GetMessages()->GetList().front()->GetText().startsWith(
        QStringLiteral("!@\n a\tb\r\n\n  c @")));
}

void ErrorHandlerTest::writesTheTextLogUnlessATracerIsOpen()
{
    handler().TurnLogFileOn();
    QVERIFY(handler().GetLogFile()->isOpen());
    LogFile* const first = handler().GetLogFile();
    handler().TurnLogFileOn();
    QCOMPARE(handler().GetLogFile(), first);

    VLException exception = exceptionOf(QStringLiteral(u"\u20AC"));
    exception.SetErrorTime(QTime(1, 2, 3));
    const QByteArray entry =
        "Error::\t01:02:03:\t\xE2\x82\xAC in file f in class c in method m in line 1\n\n";
    handler().ProtocolException(exception);
    QCOMPARE(textLog(), entry);

    install();
    handler().ProtocolException(exception);
    QCOMPARE(textLog(), entry);
    QCOMPARE(m_log.sent.size(), 1);
    QCOMPARE(recorded(), std::size_t(2));

    m_log.open = false;
    handler().ProtocolException(exception);
    QCOMPARE(textLog(), entry + entry);
    QCOMPARE(m_log.sent.size(), 2);

    handler().TurnLogFileOff();
    QVERIFY(!handler().GetLogFile());
    handler().ProtocolException(exception);
    handler().TurnLogFileOn(); // starts over at the beginning of what is there
    QCOMPARE(textLog(), entry + entry);
    handler().ProtocolException(exceptionOf(QStringLiteral("r")));
    QCOMPARE(textLog().size(), 2 * entry.size());
    QVERIFY(!textLog().startsWith(entry));
}

void ErrorHandlerTest::survivesALogFileThatCannotBe()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    const QDir directory(m_temp.path());
    QVERIFY(directory.mkdir(QStringLiteral("Logger.txt")));
    handler().TurnLogFileOn();
    QVERIFY(directory.rmdir(QStringLiteral("Logger.txt")));
    QVERIFY(!handler().GetLogFile()->isOpen());
    handler().ProtocolException(exceptionOf(QStringLiteral("r")));
    QCOMPARE(recorded(), std::size_t(1));
}

void ErrorHandlerTest::dropsReportsWhileBlocked()
{
    {
        const ErrorHandler::ExceptionBlocker outer;
        {
            const ErrorHandler::ExceptionBlocker inner;
            report(QStringLiteral("blocked"), 1);
            handler().ProtocolException(exceptionOf(QStringLiteral("blocked")));
            _Q_ensure(L"f", 1);
        }
        QCOMPARE(recorded(), std::size_t(0));
        report(QStringLiteral("through"), 1);
        QCOMPARE(recorded(), std::size_t(1));
    }
}

void ErrorHandlerTest::readsMessages_data()
{
    QTest::addColumn<QList<int>>("levels"); // oldest first
    QTest::addColumn<int>("filter");
    QTest::addColumn<QString>("read");
    const QList<int> mixed{1, 255, 3, 1, 254};
    QTest::newRow("all") << mixed << 0 << QStringLiteral("254 1 3 255 1");
    QTest::newRow("errors") << mixed << 1 << QStringLiteral("1 1");
    QTest::newRow("up to level 3") << mixed << 3 << QStringLiteral("1 3 1");
    QTest::newRow("up to information") << mixed << 255 << QStringLiteral("254 1 3 255 1");
    QTest::newRow("level 0 is below every filter")
        << QList<int>{0, 1} << 1 << QStringLiteral("1 0");
    QTest::newRow("no match") << QList<int>{2, 3} << 1 << QString();
    QTest::newRow("empty") << QList<int>() << 0 << QString();
    QTest::newRow("empty with a filter") << QList<int>() << 1 << QString();
}

void ErrorHandlerTest::readsMessages()
{
    QFETCH(QList<int>, levels);
    QFETCH(int, filter);
    QFETCH(QString, read);
    for (const int level : levels)
        report(QString::number(level), static_cast<unsigned char>(level));

    bool atEnd = read.isEmpty() ? false : true;
    handler().InitGetNextMessage(atEnd, static_cast<unsigned char>(filter));
    QCOMPARE(atEnd, read.isEmpty());
    QStringList texts;
    for (QString text = handler().GetNextMessage(atEnd); !atEnd;
         text = handler().GetNextMessage(atEnd))
        texts += text.section(u'@', 1, 1);
    QCOMPARE(texts.join(u' '), read);
    QVERIFY(handler().GetNextMessage(atEnd).isEmpty());
    QVERIFY(atEnd);
}

void ErrorHandlerTest::endsASearchAfterOneRound()
{
    handler().GetMessages()->SetMaxNumber(0);
    for (int i = 0; i < 300; ++i)
        report(QString::number(i), 255);
    bool atEnd = false;
    handler().InitGetNextMessage(atEnd, 1);
    QVERIFY(atEnd);
    handler().InitGetNextMessage(atEnd, 0);
    for (int i = 0; i < 256; ++i)
        handler().GetNextMessage(atEnd);
    QVERIFY(!atEnd);
    QVERIFY(handler().GetNextMessage(atEnd).contains(QStringLiteral("@299@"))); // 0 comes after 255
    handler().GetMessages()->SetMaxNumber(400); // empty pointers are the end
    handler().GetMessages()->SetCurrentPosition(255);
    handler().GetMessages()->SetMaxNumber(5);
    handler().GetMessages()->SetMaxNumber(8);
    handler().InitGetNextMessage(atEnd, 255);
    int count = 0;
    for (handler().GetNextMessage(atEnd); !atEnd; handler().GetNextMessage(atEnd))
        ++count;
    QCOMPARE(count, 5);
}

void ErrorHandlerTest::asksTheDialog()
{
    IErrorHandler& reports = handler();
    IErrorHandlerBase& base = handler();
    const QString text = QStringLiteral("t");
    VLException exception = exceptionOf(QStringLiteral("e"));
    const auto askAll = [&] {
        QList<int> answers;
        answers += reports.ShowErrorDialog(exception, true, 5, false, true);
        answers += reports.ShowErrorDialog(text, false, -6, true, false);
        reports.PostErrorDialog(exception, true, 7, false);
        reports.PostErrorDialog(text, false, 8, true);
        base.errorDialog(text, true, 9, true);
        reports.ShowWarningDialog(text);
        return answers;
    };

    QCOMPARE(ErrorHandler::GetMessageDlg(), nullptr);
    QCOMPARE(askAll(), (QList<int>{-2, -2}));

    QStringList notes;
    ErrorHandler::SetMessageDlg(std::make_unique<NotingDialog>(notes));
    QVERIFY(ErrorHandler::GetMessageDlg());
    QCOMPARE(askAll(), (QList<int>{7, 7}));
    ErrorHandler::SetMessageDlg(nullptr);
    QCOMPARE(askAll(), (QList<int>{-2, -2}));
    QCOMPARE(notes.join(u' '),
             QStringLiteral("ShowException(e,1,101,5) ShowMessage(t,1,010,-6) "
                            "PostException(e,1,100,7) PostMessage(t,1,010,8) "
                            "PostMessage(t,1,110,9) ShowMessage(t,254,110,-1) gone"));
}

void ErrorHandlerTest::swallowsWhatTracerAndDialogThrow()
{
    install([] { throw std::runtime_error("tracer"); });
    report(QStringLiteral("r"), 1);
    handler().ProtocolException(exceptionOf(QStringLiteral("r")));
    QCOMPARE(m_log.sent.size(), 2);

    class ThrowingDialog : public NotingDialog
    {
    public:
        using NotingDialog::NotingDialog;
        int ShowMessage(const QString&, unsigned char, bool, int, bool, bool) override
        {
            throw std::runtime_error("dialog");
        }
    };
    QStringList notes;
    ErrorHandler::SetMessageDlg(std::make_unique<ThrowingDialog>(notes));
    QCOMPARE(handler().ShowErrorDialog(QString(), false, 0, false, false), -2);
    ErrorHandler::SetMessageDlg(nullptr);
}

void ErrorHandlerTest::entersATracerOnlyOnce_data()
{
    QTest::addColumn<bool>("queued");
    QTest::addColumn<int>("answers");
    QTest::newRow("exceptions, 1,000 deep") << false << 1000;
    QTest::newRow("messages, 1,000 deep") << true << 1000;
    QTest::newRow("exceptions without end") << false << INT_MAX;
    QTest::newRow("messages without end") << true << INT_MAX;
}

void ErrorHandlerTest::entersATracerOnlyOnce()
{
    QFETCH(bool, queued);
    QFETCH(int, answers);
    const int sentAtMost = 1 + 1024;
    handler().GetMessages()->SetMaxNumber(0);
    handler().TurnLogFileOn();
    int depth = 0;
    int deepest = 0;
    int made = 0;
    install([&] {
        deepest = std::max(deepest, ++depth);
        if (made < answers) {
            const QString number = QString::number(++made);
            if (queued)
                _Q_Trace(number, QStringLiteral("f"), 1);
            else
                handler().ProtocolException(exceptionOf(number));
        }
        --depth;
    });

    handler().ProtocolException(exceptionOf(QStringLiteral("0")));
    QCoreApplication::processEvents();

    QCOMPARE(deepest, 1);
    QCOMPARE(made, std::min(answers, sentAtMost));
    // Every report is in the list, and either was sent or stands in the text log.
    QCOMPARE(recorded(), std::size_t(made + 1));
    QCOMPARE(m_log.sent.size(), std::min(made + 1, sentAtMost));
    for (int i = 0; i < m_log.sent.size(); ++i)
        QCOMPARE(m_log.sent.at(i).section(u'@', 1, 1).toInt(), i);
    QCOMPARE(textLog().count("Error:") + textLog().count("Warning"), made + 1 - m_log.sent.size());
}

void ErrorHandlerTest::letsATracerReplaceItself()
{
    install([this] {
        install();
        m_log.sent += QStringLiteral("still here: %1").arg(m_log.destroyed);
    });
    handler().ProtocolException(exceptionOf(QStringLiteral("first")));
    QCOMPARE(m_log.sent.last(), QStringLiteral("still here: 0"));
    QCOMPARE(m_log.destroyed, 1);
    handler().ProtocolException(exceptionOf(QStringLiteral("second")));
    QVERIFY(m_log.sent.last().startsWith(QStringLiteral("!@second@")));
    ErrorHandler::SetLogTracer(nullptr);
    QCOMPARE(m_log.destroyed, 2);
    QCOMPARE(ErrorHandler::GetLogTracer(), nullptr);
}

void ErrorHandlerTest::notifiesUncaughtHandlers()
{
    QStringList order;
    handler().AddUncaughtHandler([&order] { order += QStringLiteral("a"); });
    handler().AddUncaughtHandler([&order] { order += QStringLiteral("b"); });
    handler().NotifyUncaughtHandlers();
    QCOMPARE(order.join(QString()), QStringLiteral("ab"));
    handler().AddUncaughtHandler(nullptr);
    QVERIFY_THROWS_EXCEPTION(std::bad_function_call, handler().NotifyUncaughtHandlers());
    QCOMPARE(order.join(QString()), QStringLiteral("abab"));
}

QTEST_GUILESS_MAIN(ErrorHandlerTest)
#include "tst_errorhandler.moc"

#include "../support/notingdialog.h"
#include "../support/privatetemp.h"
#include "recordingtracer.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/logfile.h>
#include <VLBase/errorhandling/message.h>
#include <VLBase/errorhandling/messagelist.h>
#include <VLBase/errorhandling/quality.h>

#include <QtTest>

#include <stdexcept>
#include <thread>

#ifdef Q_OS_LINUX
#include <pthread.h>
#include <unistd.h>
#endif

namespace {

VLException exceptionOf(const QString& reason)
{
    VLException exception(reason, u"f"_qs, u"c"_qs, u"m"_qs, 1, 2);
    exception.SetErrorTime(QTime(1, 2, 3));
    return exception;
}

ErrorHandler& handler()
{
    return ErrorHandler::Instance();
}

int recorded()
{
    return static_cast<int>(handler().GetMessages()->GetList().size());
}

void report(const QString& text, int level)
{
    handler().ProtocolMessage(text, u"f"_qs, u"c"_qs, u"m"_qs, 1,
                              static_cast<unsigned char>(level));
    QCoreApplication::sendPostedEvents();
}

/// The texts of a list, in order; "-" stands for none.
QString textsOf(const MessageList& list)
{
    QStringList texts;
    for (const auto& message : list.GetList())
        texts += message ? message->GetText() : u"-"_qs;
    return texts.join(u' ');
}

void fill(MessageList& list, int count)
{
    for (int number = 1; number <= count; ++number)
        QCOMPARE(list.AddMessage(std::make_shared<Message>(QString::number(number), QTime(), 255)),
                 MsgAdded);
}

} // namespace

class ErrorHandlerTest : public QObject
{
    Q_OBJECT

private:
    void install(std::function<void()> answer = {})
    {
        ErrorHandler::SetLogTracer(std::make_unique<RecordingTracer>(m_log, std::move(answer)));
    }
    QByteArray textLog() const
    {
        QFile file(m_temp.filePath(u"Logger.txt"_qs));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    PrivateTemp m_temp;
    TracerLog m_log;

private Q_SLOTS:
    void init()
    {
        m_log = TracerLog();
        handler().TurnLogFileOff();
        handler().SetMessageMask(32);
        handler().GetMessages()->SetMaxNumber(100);
        handler().GetMessages()->DeleteMessageList();
    }

    void cleanup()
    {
        ErrorHandler::SetLogTracer(nullptr);
        ErrorHandler::SetMessageDlg(nullptr);
        handler().TurnLogFileOff();
        QFile::remove(m_temp.filePath(u"Logger.txt"_qs));
    }

    void tellsItsConfigurationOnce()
    {
        const QString told =
            u"ErrorHandler::Configure() - MessageMask: 32 Configuration applied"_qs;
        report(u"before"_qs, 1);
        install();
        QVERIFY(m_log.sent.isEmpty());
        report(u"after"_qs, 1);
        QCOMPARE(m_log.sent.size(), 2);
        QCOMPARE(m_log.sent.first(), told);
        install();
        report(u"other tracer"_qs, 1);
        QCOMPARE(m_log.sent.size(), 3);
    }

    void keepsTheMask()
    {
        handler().SetMessageMask(4, true);
        QCOMPARE(handler().GetMessageMask(), 36U);
        handler().SetMessageMask(32, false);
        QCOMPARE(ErrorHandler::Interface()->GetMessageMask(), 4U);
        handler().SetMessageMask(0);
        report(u"the handler filters nothing"_qs, 3);
        QCOMPARE(recorded(), 1);
    }

    void recordsMessagesInItsThreadAndExceptionsAtOnce()
    {
        install();
        std::thread([] {
            IErrorHandlerBase& base = handler();
            base.trace(u"t"_qs, u"f"_qs, u"c"_qs, u"m"_qs, 65535, 254);
            _Q_Trace(u"second"_qs, u"f"_qs, 2);
        }).join();
        QCOMPARE(recorded(), 0);
        const QString reason = u"\n a\tb\r\n\n  c "_qs;
        std::thread([&] { handler().ProtocolException(exceptionOf(reason)); }).join();
        QCOMPARE(recorded(), 1);
        const Message& message = *handler().GetMessages()->GetList().front();
        QCOMPARE(message.GetText(), u"!@"_qs + reason + u"@f@1@c@m@01:02:03"_qs);
        QCOMPARE(message.GetTimeStamp(), QTime(1, 2, 3));
        QCOMPARE(int(message.GetWarningLevel()), 1);

        QCoreApplication::sendPostedEvents();
        QCOMPARE(m_log.sent.size(), 3);
        QCOMPARE(m_log.sent.at(0), u"!@ a b c @f@1@c@m@01:02:03"_qs); // a single line
        QVERIFY(m_log.sent.at(1).startsWith(u"254@t@f@65535@c@m@"_qs));
        QVERIFY(m_log.sent.at(2).startsWith(u"3@second@f@2@@@"_qs));
        handler().ProtocolException(VLArgumentListException());
        QCOMPARE(handler().GetMessages()->GetList().front()->GetText(), QString());
    }

    void writesTheTextLogUnlessATracerIsOpen()
    {
        handler().TurnLogFileOn();
        LogFile* const first = handler().GetLogFile();
        handler().TurnLogFileOn();
        QVERIFY(first->isOpen() && handler().GetLogFile() == first);
        const VLException exception = exceptionOf(u"\u20AC"_qs);
        const QByteArray entry =
            "Error::\t01:02:03:\t\xE2\x82\xAC in file f in class c in method m in line 1\n\n";
        handler().ProtocolException(exception);
        QCOMPARE(textLog(), entry);
        install();
        handler().ProtocolException(exception);
        QCOMPARE(textLog(), entry);
        m_log.open = false;
        handler().ProtocolException(exception);
        QCOMPARE(textLog(), entry + entry);
        QVERIFY(m_log.sent.size() == 2 && recorded() == 3);

        handler().TurnLogFileOff();
        QVERIFY(!handler().GetLogFile());
        handler().ProtocolException(exception);
        handler().TurnLogFileOn(); // starts over at the beginning of what is there
        QCOMPARE(textLog(), entry + entry);
        handler().ProtocolException(exceptionOf(u"r"_qs));
        QCOMPARE(textLog().size(), 2 * entry.size());
        QVERIFY(!textLog().startsWith(entry));
    }

    void dropsReportsWhileBlocked()
    {
        const ErrorHandler::ExceptionBlocker outer;
        {
            const ErrorHandler::ExceptionBlocker inner;
            report(u"blocked"_qs, 1);
            handler().ProtocolException(exceptionOf(u"blocked"_qs));
            _Q_ensure(L"f", 1);
        }
        QCOMPARE(recorded(), 0);
        report(u"through"_qs, 1);
        QCOMPARE(recorded(), 1);
    }

    void readsMessages()
    {
        const QList<int> mixed{1, 255, 3, 1, 254}; // oldest first
        const std::tuple<QList<int>, int, QString> cases[] = {
            {mixed, 0, u"254 1 3 255 1"_qs},
            {mixed, 1, u"1 1"_qs},
            {mixed, 3, u"1 3 1"_qs},
            {mixed, 255, u"254 1 3 255 1"_qs},
            {{0, 1}, 1, u"1 0"_qs},
            {{2, 3}, 1, QString()},
            {{}, 0, QString()},
            {{}, 1, QString()},
        };
        for (const auto& [levels, filter, read] : cases) {
            handler().GetMessages()->DeleteMessageList();
            for (const int level : levels)
                report(QString::number(level), level);
            bool atEnd = !read.isEmpty();
            handler().InitGetNextMessage(atEnd, static_cast<unsigned char>(filter));
            QCOMPARE(atEnd, read.isEmpty());
            QStringList texts;
            for (QString text = handler().GetNextMessage(atEnd); !atEnd;
                 text = handler().GetNextMessage(atEnd))
                texts += text.section(u'@', 1, 1);
            QCOMPARE(texts.join(u' '), read);
            QVERIFY(handler().GetNextMessage(atEnd).isEmpty() && atEnd);
        }
    }

    void endsASearchAfterOneRound()
    {
        MessageList& list = *handler().GetMessages();
        list.SetMaxNumber(0);
        fill(list, 300);
        bool atEnd = false;
        handler().InitGetNextMessage(atEnd, 1);
        QVERIFY(atEnd);
        handler().InitGetNextMessage(atEnd, 0);
        for (int i = 0; i < 256; ++i)
            handler().GetNextMessage(atEnd);
        QCOMPARE(handler().GetNextMessage(atEnd), u"300"_qs); // 0 comes after 255
        list.SetMaxNumber(5);
        list.SetMaxNumber(8); // empty pointers are the end
        handler().InitGetNextMessage(atEnd, 255);
        int count = 0;
        for (handler().GetNextMessage(atEnd); !atEnd; handler().GetNextMessage(atEnd))
            ++count;
        QCOMPARE(count, 5);
    }

    void messageEqualityAndOrderLookAtDifferentThings()
    {
        const QTime noon(12, 0);
        const Message message(u"a"_qs, noon, 1);
        for (const Message& same : {Message(u"b"_qs, noon, 1), Message(u"a"_qs, noon, 2)}) {
            QVERIFY(message != same && !(message == same));
            QVERIFY(!(message < same) && !(message > same));
            QVERIFY(message <= same && message >= same);
        }
        const Message later(u"a"_qs, noon.addMSecs(1), 1);
        QVERIFY(message == Message(message) && !(message != Message(message)));
        QVERIFY(message != later && message < later && message <= later);
        QVERIFY(later > message && later >= message && !(later <= message) && !(message >= later));
        QVERIFY(Message(u"z"_qs, QTime(), 1) < Message(u"a"_qs, QTime(0, 0), 1));
        Message assigned;
        QCOMPARE(int(assigned.GetWarningLevel()), 255);
        QVERIFY(assigned.GetText().isEmpty() && assigned.GetTimeStamp().isValid());
        assigned = later;
        QVERIFY(assigned == later);
    }

    void messageListIsBounded()
    {
        MessageList usual;
        fill(usual, 101);
        QVERIFY(usual.GetMaxNumber() == 100 && usual.GetList().size() == 100);
        QCOMPARE(usual.GetList().front()->GetText(), u"101"_qs);
        QCOMPARE(usual.GetList().back()->GetText(), u"2"_qs);
        usual.SetCurrentPosition(7);
        QVERIFY(usual.DeleteMessageList() && usual.GetList().empty());
        QVERIFY(usual.GetCurrentPosition() == 7 && !usual.GetCurrentMessage());

        MessageList list(5);
        fill(list, 5);
        list.SetMaxNumber(3);
        QCOMPARE(textsOf(list), u"5 4 3"_qs);
        list.SetMaxNumber(8);
        QCOMPARE(textsOf(list), u"5 4 3 - - - - -"_qs);
        fill(list, 1);
        QCOMPARE(textsOf(list), u"1 5 4 3 - - - -"_qs);
    }

    void asksTheDialog()
    {
        IErrorHandler& reports = handler();
        IErrorHandlerBase& base = handler();
        VLException exception = exceptionOf(u"e"_qs);
        QStringList notes;
        const auto note = [&notes](const QString& text) { notes += text; };
        for (const int answer : {-2, 7, -2}) {
            ErrorHandler::SetMessageDlg(answer == 7 ? std::make_unique<NotingDialog>(note)
                                                    : nullptr);
            QCOMPARE(ErrorHandler::GetMessageDlg() != nullptr, answer == 7);
            QCOMPARE(reports.ShowErrorDialog(exception, true, 5, false, true), answer);
            QCOMPARE(reports.ShowErrorDialog(u"t"_qs, false, -6, true, false), answer);
            reports.PostErrorDialog(exception, true, 7, false);
            reports.PostErrorDialog(u"t"_qs, false, 8, true);
            base.errorDialog(u"t"_qs, true, 9, true);
            reports.ShowWarningDialog(u"t"_qs);
        }
        QCOMPARE(notes.join(u' '), u"ShowException(e@f@c@m@1@2,1,101,5) ShowMessage(t,1,010,-6) "
                                   "PostException(e@f@c@m@1@2,1,10,7) PostMessage(t,1,01,8) "
                                   "PostMessage(t,1,11,9) ShowMessage(t,254,110,-1)"_qs);
    }

    void swallowsWhatTracerAndDialogThrow()
    {
        install([] { throw std::runtime_error("tracer"); });
        report(u"r"_qs, 1);
        handler().ProtocolException(exceptionOf(u"r"_qs));
        QCOMPARE(m_log.sent.size(), 2);
        const auto fail = [](const QString&) { throw std::runtime_error("dialog"); };
        ErrorHandler::SetMessageDlg(std::make_unique<NotingDialog>(fail));
        QCOMPARE(handler().ShowErrorDialog(QString(), false, 0, false, false), -2);
    }

    void letsATracerTurnTheFileOff()
    {
        handler().TurnLogFileOn();
        install();
        m_log.onIsOpen = [] { handler().TurnLogFileOff(); };
        m_log.open = false;
        handler().ProtocolException(exceptionOf(u"r"_qs));
        QVERIFY(!handler().GetLogFile() && m_log.sent.size() == 1);
    }

#ifdef Q_OS_LINUX
    // What others put into a directory that all share.
    void keepsOutOfFilesOfOthers()
    {
        const QByteArray planted = QFile::encodeName(m_temp.filePath(u"Logger.txt"_qs));
        const QByteArray victim = QFile::encodeName(m_temp.filePath(u"victim"_qs));
        const QString own = m_temp.filePath(u"Logger.%1.txt"_qs.arg(geteuid()));
        const std::function<bool()> plants[] = {
            [&] { return symlink(victim.constData(), planted.constData()) == 0; },
            [&] { return link(victim.constData(), planted.constData()) == 0; },
            [&] { // another user's; only root can give files away
                return geteuid() != 0 ||
                       (QFile::copy(QFile::decodeName(victim), QFile::decodeName(planted)) &&
                        chown(planted.constData(), 1, 1) == 0);
            }};
        for (const auto& plant : plants) {
            QFile file(QFile::decodeName(victim));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("kept") == 4);
            file.close();
            QVERIFY(plant());
            const bool isForeign = QFileInfo::exists(QFile::decodeName(planted));
            handler().TurnLogFileOn();
            handler().ProtocolException(exceptionOf(u"r"_qs));
            handler().TurnLogFileOff();
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll(), QByteArray("kept"));
            QCOMPARE(QFile::remove(own), isForeign);
            QVERIFY(QFile::remove(QFile::decodeName(planted)));
        }
    }
#endif

#ifdef Q_OS_LINUX // elsewhere the end of a thread unwinds nothing
    void letsAThreadEndInsideTracerAndDialog()
    {
        install([] { pthread_exit(nullptr); });
        std::thread([] { handler().ProtocolException(exceptionOf(u"r"_qs)); }).join();
        ErrorHandler::SetMessageDlg(
            std::make_unique<NotingDialog>([](const QString&) { pthread_exit(nullptr); }));
        std::thread([] { handler().ShowWarningDialog(QString()); }).join();
        install();
        report(u"the lock is free"_qs, 1);
        QCOMPARE(m_log.sent.size(), 2);
    }
#endif

    // However deep it answers, with exceptions or with messages.
    void entersATracerOnlyOnce()
    {
        const int sentAtMost = 1 + 1024;
        for (const auto& [queued, answers] :
             {std::pair(false, 1000), std::pair(true, 1000), std::pair(false, INT_MAX),
              std::pair(true, INT_MAX)}) {
            cleanup();
            init();
            handler().GetMessages()->SetMaxNumber(0);
            handler().TurnLogFileOn();
            int depth = 0;
            int deepest = 0;
            int made = 0;
            install([&, asMessage = queued, most = answers] {
                deepest = std::max(deepest, ++depth);
                if (made < most) {
                    const QString number = QString::number(++made);
                    if (asMessage)
                        _Q_Trace(number, u"f"_qs, 1);
                    else
                        handler().ProtocolException(exceptionOf(number));
                }
                --depth;
            });
            handler().ProtocolException(exceptionOf(u"0"_qs));
            QCoreApplication::processEvents();

            QCOMPARE(deepest, 1);
            QCOMPARE(made, std::min(answers, sentAtMost));
            // Every report is in the list, and either was sent or stands in the text log.
            QCOMPARE(recorded(), made + 1);
            QCOMPARE(m_log.sent.size(), std::min(made + 1, sentAtMost));
            for (int i = 0; i < m_log.sent.size(); ++i)
                QCOMPARE(m_log.sent.at(i).section(u'@', 1, 1).toInt(), i);
            QCOMPARE(textLog().count(" in file "), made + 1 - m_log.sent.size());
        }
    }

    void letsATracerReplaceItself()
    {
        install([this] {
            install();
            m_log.sent += u"still here: %1"_qs.arg(m_log.destroyed);
        });
        handler().ProtocolException(exceptionOf(u"first"_qs));
        QCOMPARE(m_log.sent.last(), u"still here: 0"_qs);
        QCOMPARE(m_log.destroyed, 1);
        handler().ProtocolException(exceptionOf(u"second"_qs));
        QVERIFY(m_log.sent.last().startsWith(u"!@second@"_qs));
        ErrorHandler::SetLogTracer(nullptr);
        QCOMPARE(m_log.destroyed, 2);
        QCOMPARE(ErrorHandler::GetLogTracer(), nullptr);
    }

    void notifiesUncaughtHandlers()
    {
        QString order;
        handler().AddUncaughtHandler([&order] { order += u'a'; });
        handler().AddUncaughtHandler([&order] { order += u'b'; });
        handler().AddUncaughtHandler(nullptr);
        QVERIFY_THROWS_EXCEPTION(std::bad_function_call, handler().NotifyUncaughtHandlers());
        QCOMPARE(order, u"ab"_qs);
    }
};

QTEST_GUILESS_MAIN(ErrorHandlerTest)
#include "tst_errorhandler.moc"

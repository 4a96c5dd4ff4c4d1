#include "../support/notingdialog.h"
#include "../support/privatetemp.h"
#include "recordingtracer.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/messagelist.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QtTest>

#include <cstddef>
#include <limits>

namespace {

VLException sample()
{
    VLException exception(u"re@son"_qs, u"a/b"_qs, u"C"_qs, u"m"_qs, 42, 7);
    exception.SetErrorTime(QTime(9, 5, 7, 999));
    return exception;
}

/// The reason of the trace that waits, as it is recorded.
QString takeTrace()
{
    QCoreApplication::sendPostedEvents();
    bool atEnd = false;
    ErrorHandler::Interface()->InitGetNextMessage(atEnd, 0);
    const QString record = ErrorHandler::Interface()->GetNextMessage(atEnd);
    ErrorHandler::Instance().GetMessages()->DeleteMessageList();
    return record.startsWith(u"3@"_qs) ? record.section(u'@', 1, -6) : u"no trace: "_qs + record;
}

} // namespace

/// Exceptions and the functions that make them of failed contracts, and traces.
class QualityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        ErrorHandler::SetMessageDlg(nullptr);
        ErrorHandler::SetLogTracer(nullptr);
        ErrorHandler::Instance().GetMessages()->DeleteMessageList();
    }

    void rendersEveryFormatAndLevel()
    {
        const QString record = u"@re@son@a/b@42@C@m@09:05:07"_qs;
        const QString full =
            u":\t09:05:07:\tre@son in file a/b in class C in method m in line 42\n"_qs;
        const QString unknown = u"Unknown FormatMode Selected"_qs;
        const std::tuple<int, int, QString> cases[] = {
            {1, 1, u"re@son"_qs},
            {2, 1, u'!' + record},
            {2, 255, record},
            {2, 0, u'0' + record},
            {2, 254, u"254"_qs + record},
            {3, 1, u"Error:"_qs + full},
            {3, 255, u"Info:"_qs + full},
            {3, 0, u"Warning (Level 0)"_qs + full},
            {3, 3, u"Warning (Level 3)"_qs + full},
            {0, 1, unknown},
            {4, 1, unknown},
        };
        for (const auto& [number, level, text] : cases) {
            const auto format = static_cast<VLExceptionTextFormat>(number);
            const auto byte = static_cast<unsigned char>(level);
            QCOMPARE(sample().GetExceptionWideText(format, byte), text);
            QCOMPARE(sample().GetExceptionAsciiText(format, byte), text.toStdString());
        }
    }

    void beginsWithDefaultsOrEightBitText()
    {
        const QTime before = QTime::currentTime();
        VLException exception;
        const QTime after = QTime::currentTime();
        QVERIFY(before > after // midnight
                || (before <= exception.GetErrorTime() && exception.GetErrorTime() <= after));
        exception.SetErrorTime(QTime(0, 0));
        QCOMPARE(exception.GetExceptionWideText(ExceptionTextFull, 1),
                 u"Error::\t00:00:00:\tNO REASON in file NO FILENAME in class NO CLASSNAME in "
                 "method NO METHODNAME in line 0\n"_qs);
        QCOMPARE(exception.GetErrorId(), 0U);

        const std::string reason = "gr\xC3\xB6\xC3\x9F"
                                   "er";
        const VLException eightBit(reason, "\xE2\x82\xAC", nullptr, "m", 0xFFFFFFFFU,
                                   VLException::NoErrorId);
        QCOMPARE(eightBit.GetErrorReason(), u"gr\u00F6\u00DFer"_qs);
        QVERIFY(eightBit.GetFileName() == u"\u20AC"_qs && eightBit.ClassName().isEmpty());
        QCOMPARE(eightBit.GetMethodName(), u"m"_qs);
        QVERIFY(eightBit.GetLineNumber() == 4294967295U && eightBit.GetErrorId() == 4294967295U);
        QCOMPARE(eightBit.GetExceptionAsciiText(ExceptionTextReason, 1), reason);
    }

    void comparesEveryField()
    {
        using Change = void (*)(VLException&);
        const Change changes[] = {
            [](VLException& e) { e.SetErrorTime(QTime(9, 5, 7, 998)); },
            [](VLException& e) { e.SetErrorReason(QString()); },
            [](VLException& e) { e.SetFileName(QString()); },
            [](VLException& e) { e.SetClassName(QString()); },
            [](VLException& e) { e.SetMethodName(QString()); },
            [](VLException& e) { e.SetLineNumber(43); },
            [](VLException& e) { e.SetErrorId(8); },
        };
        const VLException original = sample();
        for (const Change change : changes) {
            VLException changed = original;
            QVERIFY(changed == original && !(changed != original));
            change(changed);
            QVERIFY(changed != original && !(changed == original));
            VLException target;
            target = changed;
            QVERIFY(target == changed);
        }
        try {
            throw sample();
        } catch (const std::exception& caught) {
            QCOMPARE(caught.what(), "Unknown exception");
        }
    }

    void argumentListIsInert()
    {
        VLArgumentListException exception(u"r"_qs, u"f"_qs, u"c"_qs, u"m"_qs, 1, {u"argument"_qs},
                                          2UL, u"text"_qs);
        QCOMPARE(exception.GetErrorReason(), u"NO REASON"_qs);
        QVERIFY(exception.GetLineNumber() == 0 && exception.GetErrorId() == 0);
        QVERIFY(!(exception == exception) && !(exception != exception));
        exception.SetErrorReason(u"changed"_qs);
        QCOMPARE(VLArgumentListException(exception).GetErrorReason(), u"NO REASON"_qs);
        VLArgumentListException assigned;
        assigned = exception;
        QCOMPARE(assigned.GetErrorReason(), u"changed"_qs);
        const VLException& base = assigned;
        QCOMPARE(base.what(), "Unknown exception");
        for (const auto format : {ExceptionTextReason, ExceptionTextRecord, ExceptionTextFull})
            QVERIFY(base.GetExceptionWideText(format, 1).isEmpty() &&
                    base.GetExceptionAsciiText(format, 1).empty());
    }

    void reportsAFailedContract()
    {
        ErrorHandler::SetLogTracer(std::make_unique<RecordingTracer>(m_log));
        ErrorHandler::Interface()->ProtocolException(VLException()); // with the configuration
        const std::tuple<void (*)(), QString, QString> cases[] = {
            {[] { _Q_require(L"a/b", 65535); }, u"REQUIREMENT FAILED"_qs, u"a/b"_qs},
            {[] { _Q_ensure(L"a/b", 65535); }, u"ENSURE FAILED"_qs, u"a/b"_qs},
            {[] { _Q_assert(L"x > \u00B5", L"a/b", 65535); }, u"ASSERTION FAILED x > \u00B5"_qs,
             u"a/b"_qs},
            {[] { _Q_assert(nullptr, nullptr, 65535); }, u"ASSERTION FAILED "_qs, QString()},
        };
        for (const auto& [check, reason, file] : cases) {
            QStringList posted;
            ErrorHandler::SetMessageDlg(
                std::make_unique<NotingDialog>([&posted](const QString& note) { posted += note; }));
            m_log.sent.clear();
            check(); // recorded before it returns, without an event loop
            QCOMPARE(m_log.sent.size(), 1);
            QVERIFY(m_log.sent.first().startsWith(u"!@%1@%2@65535@@@"_qs.arg(reason, file)));
            QCOMPARE(posted, QStringList(u"PostException(%1@%2@@@65535@4294967295,1,00,-1)"_qs.arg(
                                 reason, file)));
            ErrorHandler::SetMessageDlg(nullptr);
            check();
            QCOMPARE(m_log.sent.size(), 2);
        }
    }

    void formatsLikeWidePrintf()
    {
#define TRACED(expected, ...)                                                                      \
    _Q_TraceOld(__VA_ARGS__);                                                                      \
    QCOMPARE(takeTrace(), QStringLiteral(expected))

        // Text: wide unless the conversion says otherwise, whatever the size of a wide character.
        TRACED(u"\u00E4\u20AC|b|c", u"%s|%ls|%ws"_qs, L"\u00E4\u20AC", L"b", L"c");
        TRACED(u"\u00E4|b|c", u"%S|%hs|%hS"_qs, "\xC3\xA4", "b", "c");
        TRACED("   ab|ab   |   ab|ab   |", u"%5s|%-5s|%*s|%*s|"_qs, L"ab", L"ab", 5, L"ab", -5,
               L"ab");
        const wchar_t unterminated[] = {L'a', L'b', L'c'};
        TRACED("ab|  a|", u"%.2s|%3.*s|"_qs, unterminated, 1, unterminated);
        TRACED("(null)|(null)", u"%s|%hs"_qs, static_cast<wchar_t*>(nullptr),
               static_cast<char*>(nullptr));
        TRACED(u"\u20AC|x|  y|", u"%c|%hc|%3C|"_qs, 0x20AC, 'x', 'y');
        TRACED("ends", u"ends%chere"_qs, 0);

        // Numbers of every size.
        TRACED("-5|+5|  -5|-5  |0005|00000005", u"%d|%+d|%4i|%-4d|%.4d|%08d"_qs, -5, 5, -5, -5, 5,
               5);
        TRACED("4294967295|ff|0XFF|17", u"%u|%x|%#X|%o"_qs, 0xFFFFFFFFU, 255, 255, 15);
        TRACED("-1|255|-1|65535", u"%hhd|%hhu|%hd|%hu"_qs, -1, -1, -1, -1);
        TRACED("-9223372036854775808|18446744073709551615|7", u"%I64d|%llu|%I32d"_qs,
               std::numeric_limits<long long>::min(),
               std::numeric_limits<unsigned long long>::max(), 7);
        TRACED("-3|4|5|6", u"%ld|%lu|%zu|%Id"_qs, -3L, 4UL, std::size_t(5), std::ptrdiff_t(6));
        TRACED("1.50|2.5e+10|0.1|3.25", u"%.2f|%.1e|%g|%.2Lf"_qs, 1.5, 2.5e10, 0.1, 3.25L);
        TRACED("00000000DEADBEEF", u"%p"_qs, reinterpret_cast<void*>(0xDEADBEEF));

        // What must not do harm.
        int untouched = 1;
        TRACED("a|b", u"a%n|b"_qs, &untouched);
        QCOMPARE(untouched, 1);
        TRACED("100%|%y|%-5", u"100%%|%y|%-5"_qs, 0);
        TRACED("%**d|%.-5d|%5*d|%1.2.3d|7", u"%**d|%.-5d|%5*d|%1.2.3d|%d"_qs, 7);
        TRACED("5|5", u"%.*d|%.d"_qs, -1, 5, 5);
        _Q_TraceOld(u"%*d"_qs, INT_MAX, 1);
        QCOMPARE(takeTrace(), QString(399, u' '));
        _Q_TraceOld(u"%*s"_qs, INT_MIN, L"1");
        QCOMPARE(takeTrace(), u'1' + QString(398, u' '));
        _Q_TraceOld(u"%2147483647d"_qs, 1);
        QCOMPARE(takeTrace(), QString(399, u' '));
        _Q_TraceOld(u"%.99999999999999999999f"_qs, 1.0);
        QCOMPARE(takeTrace(), u"1."_qs + QString(397, u'0'));
#undef TRACED
    }

    void cutsTraces()
    {
        _Q_Trace(QString(400, u'x') + QString(600, u'y'), u"f"_qs, 12);
        QCOMPARE(takeTrace(), QString(400, u'x'));
        const QString clef = QString::fromUcs4(U"\U0001D11E", 1); // two UTF-16 units
        const QString almost(397, u'x');
        const std::pair<QString, QString> cases[] = {
            {almost + u"xx"_qs, almost + u"xx"_qs},
            {almost + u"xxx"_qs, almost + u"xx"_qs},
            {QString(100'000, u'x'), almost + u"xx"_qs},
            {clef.repeated(300), clef.repeated(199)},
            {almost + clef, almost + clef},
            {almost + u'x' + clef, almost + u'x'},
        };
        for (const auto& [text, result] : cases) {
            _Q_TraceOld(u"%s"_qs, text.toStdWString().c_str());
            QCOMPARE(takeTrace(), result);
            _Q_TraceOld(text);
            QCOMPARE(takeTrace(), result);
        }
    }

private:
    PrivateTemp m_temp;
    TracerLog m_log;
};

QTEST_GUILESS_MAIN(QualityTest)
#include "tst_quality.moc"

#include "../support/privatetemp.h"
#include "recordingtracer.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/imessagedialog.h>
#include <VLBase/errorhandling/messagelist.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QtTest>

#include <cstddef>
#include <limits>

namespace {

struct Posted
{
    QString text;
    VLException exception;
    QList<int> arguments;
    int times = 0;
};

class PostDialog : public IMessageDialog
{
public:
    explicit PostDialog(Posted& posted)
        : m_posted(posted)
    {
    }
    int ShowMessage(const QString&, unsigned char, bool, int, bool, bool) override { return 0; }
    int ShowException(const VLException&, unsigned char, bool, int, bool, bool) override
    {
        return 0;
    }
    void PostException(VLException& exception, unsigned char level, bool b1, int n,
                       bool b2) override
    {
        ++m_posted.times;
        m_posted.exception = exception;
        m_posted.arguments = {level, b1, n, b2};
    }
    void PostMessage(const QString&, unsigned char, bool, int, bool) override {}

private:
    Posted& m_posted;
};

} // namespace

class QualityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void reportsAFailedContract_data();
    void reportsAFailedContract();
    void cutsATrace();
    void formatsLikeWidePrintf();
    void cutsAFormattedTrace_data();
    void cutsAFormattedTrace();

private:
    // The reason of the trace that waits, as it was recorded.
    static QString takeTrace()
    {
        QCoreApplication::sendPostedEvents();
        bool atEnd = false;
        ErrorHandler::Interface()->InitGetNextMessage(atEnd, 0);
        const QString record = ErrorHandler::Interface()->GetNextMessage(atEnd);
        ErrorHandler::Instance().GetMessages()->DeleteMessageList();
        return record.startsWith(QLatin1String("3@")) ? record.section(u'@', 1, -6)
                                                      : QStringLiteral("no trace: ") + record;
    }

    PrivateTemp m_temp;
    TracerLog m_log;
};

void QualityTest::init()
{
    ErrorHandler::SetLogTracer(std::make_unique<RecordingTracer>(m_log));
    ErrorHandler::Interface()->ProtocolException(VLException()); // takes the configuration trace
    m_log.sent.clear();
}

void QualityTest::cleanup()
{
    ErrorHandler::SetLogTracer(nullptr);
    ErrorHandler::SetMessageDlg(nullptr);
}

void QualityTest::reportsAFailedContract_data()
{
    using Check = void (*)();
    QTest::addColumn<Check>("check");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("file");
    QTest::newRow("require") << Check([] { _Q_require(L"a/b", 65535); })
                             << QStringLiteral("REQUIREMENT FAILED") << QStringLiteral("a/b");
    QTest::newRow("ensure") << Check([] { _Q_ensure(L"a/b", 65535); })
                            << QStringLiteral("ENSURE FAILED") << QStringLiteral("a/b");
    QTest::newRow("assert") << Check([] { _Q_assert(L"x > \u00B5", L"a/b", 65535); })
                            << QStringLiteral(u"ASSERTION FAILED x > \u00B5")
                            << QStringLiteral("a/b");
    QTest::newRow("null texts") << Check([] { _Q_assert(nullptr, nullptr, 65535); })
                                << QStringLiteral("ASSERTION FAILED ") << QString();
}

void QualityTest::reportsAFailedContract()
{
    using Check = void (*)();
    QFETCH(Check, check);
    QFETCH(QString, reason);
    QFETCH(QString, file);
    Posted posted;
    ErrorHandler::SetMessageDlg(std::make_unique<PostDialog>(posted));

    check(); // recorded before it returns, without an event loop

    QCOMPARE(m_log.sent.size(), 1);
    QVERIFY(m_log.sent.first().startsWith(QStringLiteral("!@%1@%2@65535@@@").arg(reason, file)));
    QCOMPARE(posted.times, 1);
    QCOMPARE(posted.arguments, (QList<int>{1, 0, -1, 0}));
    QCOMPARE(posted.exception.GetErrorReason(), reason);
    QCOMPARE(posted.exception.GetFileName(), file);
    QCOMPARE(posted.exception.GetErrorId(), 0xFFFFFFFFU);
    QVERIFY(posted.exception.ClassName().isEmpty());
    QVERIFY(posted.exception.GetMethodName().isEmpty());

    ErrorHandler::SetMessageDlg(nullptr);
    check();
    QCOMPARE(m_log.sent.size(), 2);
    QCOMPARE(posted.times, 1);
}

void QualityTest::cutsATrace()
{
    _Q_Trace(QString(400, u'x') + QString(600, u'y'), QStringLiteral("f"), 12);
    QVERIFY(m_log.sent.isEmpty());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(m_log.sent.size(), 1);
    QVERIFY(m_log.sent.first().startsWith(QStringLiteral("3@%1@f@12@@@").arg(QString(400, u'x'))));
}

void QualityTest::formatsLikeWidePrintf()
{
#define TRACED(expected, ...)                                                                      \
    _Q_TraceOld(__VA_ARGS__);                                                                      \
    QCOMPARE(takeTrace(), QStringLiteral(expected))

    // Text: wide unless the conversion says otherwise, whatever the size of a wide character.
    TRACED(u"\u00E4\u20AC|b|c", QStringLiteral("%s|%ls|%ws"), L"\u00E4\u20AC", L"b", L"c");
    TRACED(u"\u00E4|b|c", QStringLiteral("%S|%hs|%hS"), "\xC3\xA4", "b", "c");
    TRACED("   ab|ab   |   ab|ab   |", QStringLiteral("%5s|%-5s|%*s|%*s|"), L"ab", L"ab", 5, L"ab",
           -5, L"ab");
    const wchar_t unterminated[] = {L'a', L'b', L'c'};
    TRACED("ab|  a|", QStringLiteral("%.2s|%3.*s|"), unterminated, 1, unterminated);
    TRACED("(null)|(null)", QStringLiteral("%s|%hs"), static_cast<wchar_t*>(nullptr),
           static_cast<char*>(nullptr));
    TRACED(u"\u20AC|x|  y|", QStringLiteral("%c|%hc|%3C|"), 0x20AC, 'x', 'y');
    TRACED("ends", QStringLiteral("ends%chere"), 0);

    // Numbers of every size.
    TRACED("-5|+5|  -5|-5  |0005|00000005", QStringLiteral("%d|%+d|%4i|%-4d|%.4d|%08d"), -5, 5, -5,
           -5, 5, 5);
    TRACED("4294967295|ff|0XFF|17", QStringLiteral("%u|%x|%#X|%o"), 0xFFFFFFFFU, 255, 255, 15);
    TRACED("-1|255|-1|65535", QStringLiteral("%hhd|%hhu|%hd|%hu"), -1, -1, -1, -1);
    TRACED("-9223372036854775808|18446744073709551615|7", QStringLiteral("%I64d|%llu|%I32d"),
           std::numeric_limits<long long>::min(), std::numeric_limits<unsigned long long>::max(),
           7);
    TRACED("-3|4|5|6", QStringLiteral("%ld|%lu|%zu|%Id"), -3L, 4UL, std::size_t(5),
           std::ptrdiff_t(6));
    TRACED("1.50|2.5e+10|0.1|3.25", QStringLiteral("%.2f|%.1e|%g|%.2Lf"), 1.5, 2.5e10, 0.1, 3.25L);
    TRACED("00000000DEADBEEF", QStringLiteral("%p"), reinterpret_cast<void*>(0xDEADBEEF));

    // What must not do harm.
    int untouched = 1;
    TRACED("a|b", QStringLiteral("a%n|b"), &untouched);
    QCOMPARE(untouched, 1);
    TRACED("100%|%y|%-5", QStringLiteral("100%%|%y|%-5"), 0);
    _Q_TraceOld(QStringLiteral("%2147483647d"), 1);
    QCOMPARE(takeTrace(), QString(399, u' '));
    _Q_TraceOld(QStringLiteral("%.99999999999999999999f"), 1.0);
    QCOMPARE(takeTrace(), QStringLiteral("1.") + QString(397, u'0'));
#undef TRACED
}

void QualityTest::cutsAFormattedTrace_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("result");
    const QString clef = QString::fromUcs4(U"\U0001D11E", 1); // two UTF-16 units
    QTest::newRow("fits") << QString(399, u'x') << QString(399, u'x');
    QTest::newRow("one too long") << QString(400, u'x') << QString(399, u'x');
    QTest::newRow("very long") << QString(100000, u'x') << QString(399, u'x');
    QTest::newRow("surrogate pairs") << clef.repeated(300) << clef.repeated(199);
    QTest::newRow("pair that fits") << QString(397, u'x') + clef << QString(397, u'x') + clef;
    QTest::newRow("pair at the edge") << QString(398, u'x') + clef << QString(398, u'x');
}

void QualityTest::cutsAFormattedTrace()
{
    QFETCH(QString, text);
    QFETCH(QString, result);
    _Q_TraceOld(QStringLiteral("%s"), text.toStdWString().c_str());
    QCOMPARE(takeTrace(), result);
    _Q_TraceOld(text);
    QCOMPARE(takeTrace(), result);
}

QTEST_GUILESS_MAIN(QualityTest)
#include "tst_quality.moc"

#include "../support/privatetemp.h"
#include "tests/support/program.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/logging/blocktrace.h>
#include <VLBase/logging/timedcall.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

#include <optional>
#include <thread>

namespace {

constexpr char debuggerRole[] = "writes-to-the-debugger";

/// What traces report, before any log has seen it.
class Traces : public QObject
{
public:
    Traces()
    {
        connect(&ErrorHandler::Instance(), &ErrorHandler::si_protocolMessage, this,
                [this](const QString& text, const QString& file, const QString& className,
                       const QString& method, std::uint16_t line, std::uint8_t level) {
                    texts.append(text);
                    places.append(QStringLiteral("%1|%2|%3|%4|%5")
                                      .arg(file, className, method)
                                      .arg(line)
                                      .arg(level));
                });
    }

    QStringList texts;
    QStringList places;
};

class MaskOff
{
public:
    MaskOff() { ErrorHandler::Instance().SetMessageMask(32, false); }
    ~MaskOff() { ErrorHandler::Instance().SetMessageMask(32, true); }
};

int writeToTheDebugger()
{
    const MaskOff off;
    const TimedCall call;
    QThread::msleep(2);
    call.Evaluate(L"sweep \u00b5 %2", 1.0);
    call.Evaluate(L"too quick", 60'000.0);
    call.Evaluate(static_cast<const wchar_t*>(nullptr), 1.0);
    return 0;
}

} // namespace

class TimedCallTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresMilliseconds()
    {
        QElapsedTimer outer;
        outer.start();
        TimedCall call;
        QElapsedTimer inner;
        inner.start();
        QTest::qSleep(40);
        const double least = static_cast<double>(inner.nsecsElapsed()) / 1e6;
        const double measured = call.GetTime();
        const double most = static_cast<double>(outer.nsecsElapsed()) / 1e6;
        // Both clocks are read to 0.1 ms and better.
        QVERIFY2(measured >= least - 0.1 && measured <= most + 0.1,
                 qPrintable(QString::number(measured)));
        const TimedCall copy(call);
        call = TimedCall();
        QVERIFY(copy.GetTime() >= measured && call.GetTime() < copy.GetTime());
    }

    void tracesWhatTakesTooLong()
    {
        Traces traces;
        {
            const AutoTimedCall life(u"life"_qs);
            QTest::qSleep(2);
            life.Evaluate(u"slow"_qs, 60'000.0);
            QVERIFY(traces.texts.isEmpty());
            life.Evaluate(u"slow"_qs, 1.0);
            const MaskOff off;
            life.Evaluate(u"slow"_qs, 1.0);
        }
        const QString place = u"errorhandling/quality|||243|3"_qs;
        QCOMPARE(traces.places, QStringList({place, place}));
        const QRegularExpression form(u"^slow (\\d+(\\.\\d+)?) ms\nlife \\d+(\\.\\d+)? ms$"_qs);
        const auto match = form.match(traces.texts.join(u'\n'));
        QVERIFY2(match.hasMatch(), qPrintable(traces.texts.join(u'\n')));
        QVERIFY(match.captured(1).toDouble() >= 1.9);
        QVERIFY(match.captured(1).remove(u'.').size() <= 6);
    }

    void nestedBlocks()
    {
        Traces traces;
        {
            const BLOCK_TRACE a(u"A"_qs);
            std::optional<MaskOff> off(std::in_place);
            const BLOCK_TRACE unseen(u"unseen"_qs); // is counted all the same
            QCOMPARE(BLOCK_TRACE::GetIndent(), u"*  "_qs);
            off.reset();
            const BLOCK_TRACE b(u"B"_qs);
        }
        QCOMPARE(traces.texts,
                 QStringList({u"*A {"_qs, u"*  B {"_qs, u"*  }"_qs, u"* }"_qs, u"*}"_qs}));
        const QString begin = u"errorhandling/quality|||129|3"_qs;
        const QString end = u"errorhandling/quality|||136|3"_qs;
        QCOMPARE(traces.places, QStringList({begin, begin, end, end, end}));
        QCOMPARE(BLOCK_TRACE::GetIndent(), u"*"_qs);
    }

    void blocksOfSeveralThreads()
    {
        const MaskOff off;
        const auto nest = [] {
            for (int round = 0; round < 10'000; ++round)
                const BLOCK_TRACE block(u"block"_qs);
        };
        std::thread other(nest);
        nest();
        other.join();
        QCOMPARE(BLOCK_TRACE::GetIndent(), u"*"_qs);
    }

    // Last: after a child was started, GCC's thread sanitizer allows no new thread.
    void writesToTheDebugger()
    {
#ifdef Q_OS_WIN
        QSKIP("the text goes to a debugger, which this test is not");
#endif
        QProcess process;
        startThisProgram(process, {QLatin1String(debuggerRole)});
        QVERIFY(awaitEnd(process) && process.exitCode() == 0);
        const QString written = QString::fromUtf8(process.readAllStandardError());
        const QRegularExpression form(
            u"^sweep \u00b5 %2 Time \\d+\\.\\d\\dms\n Time \\d+\\.\\d\\dms\n$"_qs);
        QVERIFY2(form.match(written).hasMatch(), qPrintable(written));
    }

private:
    PrivateTemp m_temp;
};

int main(int argc, char** argv)
{
    if (argc > 1 && qstrcmp(argv[1], debuggerRole) == 0)
        return writeToTheDebugger();
    const QCoreApplication application(argc, argv);
    TimedCallTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_timedcall.moc"

#include "emitter.h"

#include <VLBase/qthelpers/awaitsignal.h>
#include <VLBase/qthelpers/signaldelayer.h>

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace QObjectHelpers;

namespace {

QList<QAbstractEventDispatcher::TimerInfo> timersOf(QObject* object)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(object);
}

} // namespace

class TestSignalDelayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deliversTheLastOfABurst();
    void timerIsExact();
    void carriesEverySignature();
    void signalDuringDeliveryIsDropped();
    void foreignTimerEventIsIgnored();
    void refusalLeavesNothing_data();
    void refusalLeavesNothing();
    void endsWithTheReceiver();
    void endsWithTheSender();
    void deliveryMayEndTheSender();
    void endedActionArrivesAsNull();
    void waitTellsWhatHappened_data();
    void waitTellsWhatHappened();
    void waitEndsWithAnyOfTheSignals();
    void plainWait();
};

void TestSignalDelayer::deliversTheLastOfABurst()
{
    Emitter sender;
    QObject marker;
    QStringList log;
    Emitter receiver;
    connect(&receiver, &Emitter::integer, [&log](int v) { log.append(QString::number(v)); });
    QVERIFY(SignalDelayer::connectDelayed<void(int)>(&sender, "2integer(int)", &receiver,
                                                     "2integer(int)", 100));
    QElapsedTimer clock;
    clock.start();
    qint64 firstDelivery = 0;
    connect(&receiver, &Emitter::integer, [&] {
        if (!firstDelivery)
            firstDelivery = clock.elapsed();
    });
    const auto at = [&marker](int ms, auto act) {
        QTimer::singleShot(ms, Qt::PreciseTimer, &marker, act);
    };
    // Timers of one thread fire in the order of their times, however late a loaded machine is.
    // A delay that began anew with each signal would deliver after the mark at 130 ms.
    Q_EMIT sender.integer(1);
    at(30, [&] { Q_EMIT sender.integer(2); });
    at(60, [&] { Q_EMIT sender.integer(3); });
    at(130, [&] { log.append(u"mark"_qs); });
    QTRY_COMPARE(log, QStringList({u"3"_qs, u"mark"_qs}));
    QVERIFY2(firstDelivery >= 99, qPrintable(QString::number(firstDelivery)));
    Q_EMIT sender.integer(4);
    QTRY_COMPARE(log, QStringList({u"3"_qs, u"mark"_qs, u"4"_qs}));
    QTest::qWait(150);
    QCOMPARE(log.size(), 3);
}

void TestSignalDelayer::timerIsExact()
{
    Emitter sender;
    Emitter receiver;
    SignalDelayer* delayer = SignalDelayer::connectDelayed<void()>(
        &sender, SIGNAL(plain()), &receiver, SIGNAL(plain()), 30'000);
    QCOMPARE(delayer->parent(), &sender);
    QVERIFY(timersOf(delayer).isEmpty());

    Q_EMIT sender.plain();
    delayer->setDelay(20);
    Q_EMIT sender.plain();
    const auto timers = timersOf(delayer);
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first().interval, 30'000);
    QCOMPARE(timers.first().timerType, Qt::PreciseTimer);
    QCOMPARE(delayer->delay(), 20);
}

void TestSignalDelayer::carriesEverySignature()
{
    Emitter sender;
    Emitter receiver;
    QAction action;
    QSignalSpy plain(&receiver, &Emitter::plain);
    QSignalSpy boolean(&receiver, &Emitter::boolean);
    QSignalSpy integer(&receiver, &Emitter::integer);
    QSignalSpy real(&receiver, &Emitter::real);
    QSignalSpy text(&receiver, &Emitter::text);
    QSignalSpy actions(&receiver, &Emitter::action);
    const auto join = [&](auto* signature, const char* signal) {
        using Signature = std::remove_pointer_t<decltype(signature)>;
        return SignalDelayer::connectDelayed<Signature>(&sender, signal, &receiver, signal, 0,
                                                        Qt::QueuedConnection);
    };
    QVERIFY(join(static_cast<void (*)()>(nullptr), SIGNAL(plain())));
    QVERIFY(join(static_cast<void (*)(bool)>(nullptr), SIGNAL(boolean(bool))));
    QVERIFY(join(static_cast<void (*)(int)>(nullptr), SIGNAL(integer(int))));
    QVERIFY(join(static_cast<void (*)(double)>(nullptr), SIGNAL(real(double))));
    QVERIFY(join(static_cast<void (*)(const QString&)>(nullptr), "2text(const QString&)"));
    QVERIFY(join(static_cast<void (*)(QAction*)>(nullptr), SIGNAL(action(QAction*))));

    for (bool last : {false, true}) {
        Q_EMIT sender.plain();
        Q_EMIT sender.boolean(last);
        Q_EMIT sender.integer(last ? 5 : 4);
        Q_EMIT sender.real(last ? 0.5 : 0.4);
        Q_EMIT sender.text(last ? u"last"_qs : u"first"_qs);
        Q_EMIT sender.action(last ? &action : nullptr);
    }
    QTRY_COMPARE(actions.size(), 1);
    QCOMPARE(plain.size(), 1);
    QCOMPARE(boolean, QList<QVariantList>{{true}});
    QCOMPARE(integer, QList<QVariantList>{{5}});
    QCOMPARE(real, QList<QVariantList>{{0.5}});
    QCOMPARE(text, QList<QVariantList>{{u"last"_qs}});
    QCOMPARE(actions.first().first().value<QAction*>(), &action);
}

void TestSignalDelayer::signalDuringDeliveryIsDropped()
{
    Emitter sender;
    Emitter receiver;
    QList<int> delivered;
    SignalDelayer* delayer = SignalDelayer::connectDelayed<void(int)>(
        &sender, SIGNAL(integer(int)), &receiver, SIGNAL(integer(int)), 0);
    connect(&receiver, &Emitter::integer, [&](int value) {
        delivered.append(value);
        if (value < 10)
            Q_EMIT sender.integer(value + 10);
    });
    Q_EMIT sender.integer(1);
    QTRY_COMPARE(delivered, QList<int>{1});
    QVERIFY(timersOf(delayer).isEmpty());
    wait(20);
    QCOMPARE(delivered, QList<int>{1});
    Q_EMIT sender.integer(20);
    QTRY_COMPARE(delivered, QList<int>({1, 20}));
}

void TestSignalDelayer::foreignTimerEventIsIgnored()
{
    Emitter sender;
    Emitter receiver;
    QSignalSpy delivered(&receiver, &Emitter::plain);
    SignalDelayer* delayer = SignalDelayer::connectDelayed<void()>(
        &sender, SIGNAL(plain()), &receiver, SIGNAL(plain()), 30'000);
    Q_EMIT sender.plain();
    const int own = timersOf(delayer).first().timerId;

    QTimerEvent foreign(own + 1);
    QCoreApplication::sendEvent(delayer, &foreign);
    QCOMPARE(delivered.size(), 0);
    QTimerEvent due(own);
    QCoreApplication::sendEvent(delayer, &due);
    QCOMPARE(delivered.size(), 1);
    QVERIFY(timersOf(delayer).isEmpty());
}

void TestSignalDelayer::refusalLeavesNothing_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("slot");

    QTest::newRow("no signal") << QByteArray() << QByteArray("2integer(int)");
    QTest::newRow("no slot") << QByteArray("2integer(int)") << QByteArray();
    QTest::newRow("misspelt signal") << QByteArray("2integr(int)") << QByteArray("2integer(int)");
    QTest::newRow("misspelt slot") << QByteArray("2integer(int)") << QByteArray("1integr(int)");
}

void TestSignalDelayer::refusalLeavesNothing()
{
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, slot);
    Emitter sender;
    Emitter receiver;
    const char* signalText = signal.isNull() ? nullptr : signal.constData();
    const char* slotText = slot.isNull() ? nullptr : slot.constData();
    QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&sender, signalText, &receiver, slotText, 0));
    QVERIFY(!SignalDelayer::connectDelayed<void(int)>(nullptr, signalText, &receiver, slotText, 0));
    QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&sender, signalText, nullptr, slotText, 0));
    QVERIFY(sender.children().isEmpty());
}

void TestSignalDelayer::endsWithTheReceiver()
{
    Emitter sender;
    auto receiver = std::make_unique<Emitter>();
    const QPointer<SignalDelayer> delayer = SignalDelayer::connectDelayed<void()>(
        &sender, SIGNAL(plain()), receiver.get(), SIGNAL(plain()), 0);
    QSignalSpy delivered(receiver.get(), &Emitter::plain);
    Q_EMIT sender.plain();
    receiver.reset();
    QTRY_VERIFY(!delayer);
    QCOMPARE(delivered.size(), 0);
    QVERIFY(sender.children().isEmpty());
}

void TestSignalDelayer::endsWithTheSender()
{
    auto sender = std::make_unique<Emitter>();
    Emitter receiver;
    QSignalSpy delivered(&receiver, &Emitter::text);
    const QPointer<SignalDelayer> delayer = SignalDelayer::connectDelayed<void(const QString&)>(
        sender.get(), SIGNAL(text(QString)), &receiver, SIGNAL(text(QString)), 0);
    Q_EMIT sender->text(u"pending"_qs);
    sender.reset();
    QVERIFY(!delayer);
    wait(20);
    QCOMPARE(delivered.size(), 0);
}

void TestSignalDelayer::deliveryMayEndTheSender()
{
    auto sender = std::make_unique<Emitter>();
    Emitter receiver;
    QStringList delivered;
    connect(&receiver, &Emitter::text, [&](const QString& value) {
        sender.reset();
        delivered.append(value);
    });
    const QPointer<SignalDelayer> delayer = SignalDelayer::connectDelayed<void(const QString&)>(
        sender.get(), SIGNAL(text(QString)), &receiver, SIGNAL(text(QString)), 0);
    Q_EMIT sender->text(QString(100, u'x'));
    QTRY_COMPARE(delivered, QStringList(QString(100, u'x')));
    QVERIFY(!sender && !delayer);
}

void TestSignalDelayer::endedActionArrivesAsNull()
{
    Emitter sender;
    Emitter receiver;
    QSignalSpy delivered(&receiver, &Emitter::action);
    SignalDelayer::connectDelayed<void(QAction*)>(&sender, SIGNAL(action(QAction*)), &receiver,
                                                  SIGNAL(action(QAction*)), 0);
    {
        QAction action;
        Q_EMIT sender.action(&action);
    }
    QTRY_COMPARE(delivered.size(), 1);
    QCOMPARE(delivered.first().first().value<QAction*>(), nullptr);
}

void TestSignalDelayer::waitTellsWhatHappened_data()
{
    QTest::addColumn<int>("signalAfter");
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("result");
    QTest::addColumn<int>("atLeast");

    QTest::newRow("time runs out") << -1 << 50 << true << 49;
    QTest::newRow("no time at all") << -1 << 0 << true << 0;
    QTest::newRow("signal in time") << 20 << 30'000 << false << 19;
    QTest::newRow("signal, no limit") << 20 << -1 << true << 19;
}

void TestSignalDelayer::waitTellsWhatHappened()
{
    QFETCH(int, signalAfter);
    QFETCH(int, limit);
    QFETCH(int, atLeast);
    Emitter emitter;
    if (signalAfter >= 0) {
        QTimer::singleShot(signalAfter, Qt::PreciseTimer, &emitter,
                           [&emitter] { Q_EMIT emitter.integer(1); });
    }
    QElapsedTimer clock;
    clock.start();
    QTEST(awaitSignal(&emitter, "2integer(int)", limit), "result");
    QVERIFY(clock.elapsed() >= atLeast);
    QVERIFY(clock.elapsed() < 20'000);
}

void TestSignalDelayer::waitEndsWithAnyOfTheSignals()
{
    Emitter emitter;
    QTimer::singleShot(0, &emitter, [&emitter] { Q_EMIT emitter.text(u"x"_qs); });
    QVERIFY(!awaitSignalOneOf(&emitter, {"2plain()", "2text(QString)"}, 30'000));
    QTimer::singleShot(0, &emitter, [&emitter] { Q_EMIT emitter.integer(1); });
    QVERIFY(awaitSignalOneOf(&emitter, {"2plain()", "2text(QString)"}, 30));
    QVERIFY(awaitSignalOneOf(&emitter, {}, 0));
}

void TestSignalDelayer::plainWait()
{
    bool processed = false;
    QTimer::singleShot(0, this, [&processed] { processed = true; });
    wait(-1);
    QVERIFY(!processed);
    QElapsedTimer clock;
    clock.start();
    wait(30);
    QVERIFY(clock.elapsed() >= 29);
    QVERIFY(processed);
}

QTEST_MAIN(TestSignalDelayer)
#include "tst_signaldelayer.moc"

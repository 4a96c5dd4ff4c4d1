#include <VLBase/qthelpers/awaitsignal.h>
#include <VLBase/qthelpers/eventfilter.h>
#include <VLBase/qthelpers/qtimerhelpers.h>
#include <VLBase/qthelpers/signaldelayer.h>
#include <VLBase/qthelpers/signalhandler.h>

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QElapsedTimer>
#include <QPointer>
#include <QStandardItemModel>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace QObjectHelpers;
using Text = void(const QString&);
using Indexes = void(const QModelIndex&, const QModelIndex&);

/// One signal of each signature that the helpers know.
class Emitter : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void plain();
    void boolean(bool value);
    void integer(int value);
    void longInteger(long value);
    void real(double value);
    void text(const QString& value);
    void action(QAction* value);
    void object(QObject* value);
    void indexes(const QModelIndex& first, const QModelIndex& second);
};

namespace {

QList<QAbstractEventDispatcher::TimerInfo> timersOf(QObject* object)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(object);
}

/// Through a delayer, from a signal to the same one of the receiver.
template <typename Signature>
SignalDelayer* delay(Emitter& sender, const char* signal, Emitter& receiver, int milliseconds = 0,
                     Qt::ConnectionType type = Qt::AutoConnection)
{
    return SignalDelayer::connectDelayed<Signature>(&sender, signal, &receiver, signal,
                                                    milliseconds, type);
}

/// Once to a function, and if it can be delayed through a delayer, which keeps the last.
template <bool IsDelayed, typename... Arguments, typename... Values>
void verifyCarried(void (Emitter::*signal)(Arguments...), const char* text, const Values&... last)
{
    using Signature = void(Arguments...);
    Emitter sender;
    Emitter receiver;
    QVariantList heard;
    QVERIFY(SignalHandler::connectHandler<Signature>(
        &receiver, text, [&heard](const std::decay_t<Arguments>&... values) {
            heard += QVariantList{u"heard"_qs, QVariant::fromValue(values)...};
        }));
    if constexpr (IsDelayed) {
        QVERIFY(delay<Signature>(sender, text, receiver, 0, Qt::QueuedConnection));
        (sender.*signal)(std::decay_t<Arguments>{}...);
        (sender.*signal)(last...);
    } else {
        (receiver.*signal)(last...);
    }
    const QVariantList expected{u"heard"_qs, QVariant::fromValue<std::decay_t<Arguments>>(last)...};
    QTRY_COMPARE(heard, expected);
}

} // namespace

class TestSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void carriesEverySignature()
    {
        QAction action;
        QStandardItemModel model(2, 1);
        const QModelIndex indexes[] = {model.index(0, 0), model.index(1, 0)};
        verifyCarried<true>(&Emitter::plain, SIGNAL(plain()));
        verifyCarried<true>(&Emitter::boolean, "2boolean(bool)", true);
        verifyCarried<true>(&Emitter::integer, SIGNAL(integer(int)), 5);
        verifyCarried<false>(&Emitter::longInteger, "2longInteger(long)", 7L);
        verifyCarried<true>(&Emitter::real, SIGNAL(real(double)), 0.5);
        verifyCarried<true>(&Emitter::text, "2text(const QString&)", u"last"_qs);
        verifyCarried<true>(&Emitter::action, "2action(QAction*)", &action);
        verifyCarried<false>(&Emitter::object, SIGNAL(object(QObject*)), &model);
        verifyCarried<false>(&Emitter::indexes, "2indexes(const QModelIndex&, const QModelIndex&)",
                             indexes[0], indexes[1]);
    }

    void refusalLeavesNothing()
    {
        Emitter sender;
        Emitter other;
        QThread thread;
        auto* elsewhere = new QObject;
        elsewhere->moveToThread(&thread);
        const auto captured = std::make_shared<int>(0);
        const std::tuple<QObject*, const char*, QObject*, const char*> cases[] = {
            {nullptr, "2integer(int)", &other, "2integer(int)"},
            {&sender, nullptr, &other, "2integer(int)"},
            {&sender, "2integr(int)", &other, "2integer(int)"},
            {&sender, "2integr(int)", nullptr, "2integer(int)"},
            {&sender, "1deleteLater()", &other, "2integer(int)"},
            {&sender, "2real(double)", &other, "2integer(int)"},
            {&sender, "2integer(int)", elsewhere, "1integr(int)"},
            {&sender, "2integer(int)", elsewhere, nullptr},
        };
        for (const auto& [from, signal, to, slot] : cases) {
            const std::function<void(int)> handler = [captured](int) {};
            QVERIFY(!SignalHandler::connectHandler<void(int)>(from, signal, handler, to));
            QVERIFY(!SignalDelayer::connectDelayed<void(int)>(from, signal, to, slot, 0));
        }
        QVERIFY(sender.children().isEmpty() && other.children().isEmpty());
        QCOMPARE(captured.use_count(), 1L);
        thread.start();
        elsewhere->deleteLater();
        thread.quit();
        QVERIFY(thread.wait());
    }

    void handlerEndsWithItsParent()
    {
        auto sender = std::make_unique<Emitter>();
        auto parent = std::make_unique<QObject>();
        Emitter other;
        int calls = 0;
        const auto join = [&calls](Emitter* from, QObject* owner) {
            return QPointer<SignalHandler>(SignalHandler::connectHandler<void()>(
                from, SIGNAL(plain()), [&calls] { ++calls; }, owner));
        };
        const auto ofSender = join(sender.get(), nullptr);
        const auto ofParent = join(&other, parent.get());
        const auto outlivesSender = join(sender.get(), parent.get());
        QVERIFY(ofSender->parent() == sender.get() && ofParent->parent() == parent.get());
        Q_EMIT sender->plain();
        Q_EMIT sender->plain();
        QCOMPARE(calls, 4);
        sender.reset();
        QVERIFY(!ofSender && outlivesSender);
        parent.reset();
        QVERIFY(!ofParent && !outlivesSender);
        Q_EMIT other.plain();
        QCOMPARE(calls, 4);
    }

    void handlerHearsItsSignatureOnly()
    {
        Emitter emitter;
        QList<int> sums; // of a function that keeps a state
        auto* handler = SignalHandler::connectHandler<void(int)>(
            &emitter, SIGNAL(integer(int)),
            [&sums, sum = 0](int value) mutable { sums.append(sum += value); });
        QVERIFY(connect(&emitter, SIGNAL(plain()), handler, SLOT(onSignal())));
        Q_EMIT emitter.plain();
        for (const int value : {1, 2, 3})
            Q_EMIT emitter.integer(value);
        QCOMPARE(sums, QList<int>({1, 3, 6}));
    }

    // The function is kept until it returns.
    void functionsMayEndWhatCallsThem()
    {
        using Function = std::function<void()>;
        using Victim = QPointer<QObject>;
        const std::function<void(const Function&, Victim&)> cases[] = {
            [](const Function& end, Victim& sender) {
                auto* emitter = new Emitter;
                sender = emitter;
                SignalHandler::connectHandler<void()>(emitter, SIGNAL(plain()), end);
                Q_EMIT emitter->plain();
            },
            [](const Function& end, Victim& parent) {
                Emitter emitter;
                parent = new QObject;
                SignalHandler::connectHandler<void()>(&emitter, SIGNAL(plain()), end, parent);
                Q_EMIT emitter.plain();
                Q_EMIT emitter.plain();
            },
            [](const Function& end, Victim& handler) {
                Emitter emitter;
                handler = SignalHandler::connectHandler<void()>(&emitter, SIGNAL(plain()), end);
                Q_EMIT emitter.plain();
            },
            [](const Function& end, Victim& watched) {
                watched = new QObject;
                const auto filter = [end](QObject*, QEvent*) {
                    end();
                    return true;
                };
                watched->installEventFilter(new EventFilter(filter, watched));
                QEvent event(QEvent::User);
                QVERIFY(QCoreApplication::sendEvent(watched, &event));
            },
            [](const Function& end, Victim& timer) { timer = QTimerHelpers::singleShot(0, end); },
        };
        const QString text = u"a text that lies in the function object"_qs;
        for (const auto& call : cases) {
            Victim victim;
            QString seen;
            call(
                [&victim, &seen, text, copy = text] {
                    delete victim;
                    seen += text + copy;
                },
                victim);
            QTRY_COMPARE(seen, text + text);
            QVERIFY(!victim);
        }
    }

    void delayerDeliversTheLastOfABurst()
    {
        Emitter sender;
        Emitter receiver;
        QList<int> log;
        QElapsedTimer clock;
        clock.start();
        connect(&receiver, &Emitter::integer, this,
                [&](int value) { log.append(clock.elapsed() >= 99 ? value : -value); });
        QVERIFY(delay<void(int)>(sender, "2integer(int)", receiver, 100));
        Q_EMIT sender.integer(1);
        QTimer::singleShot(40, &sender, [&] { Q_EMIT sender.integer(3); });
        QTRY_COMPARE(log, QList<int>{3});
        Q_EMIT sender.integer(4);
        QTRY_COMPARE(log, QList<int>({3, 4}));
        wait(150);
        QCOMPARE(log.size(), 2);
    }

    void delayerHasAnExactTimer()
    {
        Emitter sender;
        Emitter receiver;
        int delivered = 0;
        connect(&receiver, &Emitter::plain, this, [&] {
            ++delivered;
            Q_EMIT sender.plain(); // is dropped
        });
        SignalDelayer* delayer = delay<void()>(sender, SIGNAL(plain()), receiver, 30'000);
        QCOMPARE(delayer->parent(), &sender);
        QVERIFY(timersOf(delayer).isEmpty());
        for (const int next : {20, 40}) {
            const int interval = delayer->delay();
            Q_EMIT sender.plain();
            delayer->setDelay(next);
            Q_EMIT sender.plain(); // which a timer that began anew would follow
            const auto timers = timersOf(delayer);
            QCOMPARE(timers.size(), 1);
            QCOMPARE(timers.first().interval, interval);
            QCOMPARE(timers.first().timerType, Qt::PreciseTimer);
            const int before = delivered;
            for (const int foreign : {1, 0}) {
                QCOMPARE(delivered, before);
                QTimerEvent event(timers.first().timerId + foreign);
                QCoreApplication::sendEvent(delayer, &event);
            }
            QCOMPARE(delivered, before + 1);
            QVERIFY(timersOf(delayer).isEmpty());
        }
        wait(60);
        QCOMPARE(delivered, 2);
    }

    void deliveryThatThrowsIsOver()
    {
        Emitter sender;
        Emitter receiver;
        connect(&receiver, &Emitter::plain, this, [] { throw std::runtime_error("no"); });
        SignalDelayer* delayer = delay<void()>(sender, SIGNAL(plain()), receiver, 30'000);
        for (int burst = 0; burst < 2; ++burst) {
            Q_EMIT sender.plain();
            QTimerEvent event(timersOf(delayer).first().timerId);
            QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                                     QCoreApplication::sendEvent(delayer, &event));
            QVERIFY(timersOf(delayer).isEmpty());
        }
    }

    void delayerEndsWithEitherEnd()
    {
        for (const char victim : {'s', 'r', 'd'}) { // sender, receiver, the sender in the delivery
            auto sender = std::make_unique<Emitter>();
            auto receiver = std::make_unique<Emitter>();
            QStringList delivered;
            connect(receiver.get(), &Emitter::text, this, [&](const QString& value) {
                sender.reset();
                delivered.append(value);
            });
            const QPointer<SignalDelayer> delayer =
                delay<Text>(*sender, SIGNAL(text(QString)), *receiver);
            const QString value(100, u'x');
            Q_EMIT sender->text(value);
            if (victim == 's')
                sender.reset();
            if (victim == 'r')
                receiver.reset();
            QTRY_VERIFY(!delayer);
            wait(10);
            QCOMPARE(delivered, victim == 'd' ? QStringList(value) : QStringList());
        }
    }

    void endedActionArrivesAsNull()
    {
        Emitter sender;
        Emitter receiver;
        QList<QAction*> delivered;
        connect(&receiver, &Emitter::action, this, [&](QAction* a) { delivered.append(a); });
        delay<void(QAction*)>(sender, SIGNAL(action(QAction*)), receiver);
        Q_EMIT sender.action(std::make_unique<QAction>().get());
        QTRY_COMPARE(delivered, QList<QAction*>{nullptr});
    }

    void waitTellsWhatHappened()
    {
        // When the signal comes, the limit, the result.
        constexpr std::tuple<int, int, bool> cases[] = {
            {-1, 50, true}, {-1, 0, true}, {20, 30'000, false}, {20, -1, true}};
        Emitter emitter;
        for (const auto& [signalAfter, limit, result] : cases) {
            QElapsedTimer clock; // begins before the signal's timer, or a late look sees it early
            clock.start();
            if (signalAfter >= 0)
                QTimer::singleShot(signalAfter, Qt::PreciseTimer, &emitter, &Emitter::plain);
            QCOMPARE(awaitSignal(&emitter, "2plain()", limit), result);
            QVERIFY(clock.elapsed() >= (signalAfter >= 0 ? signalAfter : limit) - 1);
            QVERIFY(clock.elapsed() < 20'000);
        }
        QTimer::singleShot(0, &emitter, &Emitter::plain);
        QVERIFY(!awaitSignalOneOf(&emitter, {"2integer(int)", "2plain()"}, 30'000));
        QTimer::singleShot(0, &emitter, &Emitter::plain);
        QVERIFY(awaitSignalOneOf(&emitter, {"2integer(int)", "2text(QString)"}, 30));
        QVERIFY(awaitSignalOneOf(&emitter, {}, 0));

        // A signal in time, when a wait inside this one has put the return off.
        QTimer::singleShot(0, this, [&emitter] {
            Q_EMIT emitter.plain();
            wait(60);
        });
        QVERIFY(!awaitSignal(&emitter, "2plain()", 30));

        bool processed = false;
        QTimer::singleShot(0, this, [&processed] { processed = true; });
        wait(-1);
        QVERIFY(!processed);
        QElapsedTimer clock;
        clock.start();
        wait(30);
        QVERIFY(clock.elapsed() >= 29 && processed);
    }

    void filterStopsOrPasses()
    {
        QObject watched;
        bool stops = false;
        QList<QEvent*> seen;
        const auto see = [&](QObject* object, QEvent* event) {
            if (object == &watched)
                seen.append(event);
            return stops;
        };
        EventFilter filter(see, nullptr);
        watched.installEventFilter(&filter);
        QEvent event(QEvent::Close); // which an object does not take
        for (const bool stop : {false, true}) {
            stops = stop;
            QCOMPARE(QCoreApplication::sendEvent(&watched, &event), stop);
        }
        QCOMPARE(seen, QList<QEvent*>({&event, &event}));
        EventFilter empty({}, nullptr);
        QVERIFY_THROWS_EXCEPTION(std::bad_function_call, empty.eventFilter(this, &event));
    }
};

QTEST_MAIN(TestSignals)
#include "tst_signals.moc"

#include <VLBase/qthelpers/awaitsignal.h>
#include <VLBase/qthelpers/eventfilter.h>
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

} // namespace

class TestSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void carriesEverySignature()
    {
        Emitter sender;
        Emitter receiver;
        QAction action;
        QStandardItemModel model(2, 1);
        const auto queued = Qt::QueuedConnection;
        QVERIFY(delay<void()>(sender, "2plain()", receiver, 0, queued));
        QVERIFY(delay<void(bool)>(sender, SIGNAL(boolean(bool)), receiver, 0, queued));
        QVERIFY(delay<void(int)>(sender, "2integer(int)", receiver, 0, queued));
        QVERIFY(delay<void(double)>(sender, "2real(double)", receiver, 0, queued));
        QVERIFY(delay<Text>(sender, "2text(const QString&)", receiver, 0, queued));
        QVERIFY(delay<void(QAction*)>(sender, SIGNAL(action(QAction*)), receiver, 0, queued));
        QVariantList heard;
        const auto hear = [&heard](const auto&... values) {
            heard += sizeof...(values) ? QVariantList{QVariant::fromValue(values)...}
                                       : QVariantList{u"plain"_qs};
        };
        const auto join = [&](auto* signature, const char* signal) {
            using Signature = std::remove_pointer_t<decltype(signature)>;
            return SignalHandler::connectHandler<Signature>(&receiver, signal, hear) != nullptr;
        };
        QVERIFY(join(static_cast<void (*)()>(nullptr), SIGNAL(plain())));
        QVERIFY(join(static_cast<void (*)(bool)>(nullptr), "2boolean(bool)"));
        QVERIFY(join(static_cast<void (*)(int)>(nullptr), SIGNAL(integer(int))));
        QVERIFY(join(static_cast<void (*)(long)>(nullptr), "2longInteger(long)"));
        QVERIFY(join(static_cast<void (*)(double)>(nullptr), SIGNAL(real(double))));
        QVERIFY(join(static_cast<Text*>(nullptr), "2text(const QString&)"));
        QVERIFY(join(static_cast<void (*)(QAction*)>(nullptr), "2action(QAction*)"));
        QVERIFY(join(static_cast<void (*)(QObject*)>(nullptr), SIGNAL(object(QObject*))));
        QVERIFY(join(static_cast<Indexes*>(nullptr),
                     "2indexes(const QModelIndex&, const QModelIndex&)"));

        for (const bool last : {false, true}) {
            Q_EMIT sender.plain();
            Q_EMIT sender.boolean(last);
            Q_EMIT sender.integer(last ? 5 : 4);
            Q_EMIT sender.real(last ? 0.5 : 0.4);
            Q_EMIT sender.text(last ? u"last"_qs : u"first"_qs);
            Q_EMIT sender.action(last ? &action : nullptr);
        }
        QTRY_COMPARE(heard.size(), 6);
        Q_EMIT receiver.longInteger(7L);
        Q_EMIT receiver.object(&model);
        Q_EMIT receiver.indexes(model.index(0, 0), model.index(1, 0));
        const QVariantList expected{u"plain"_qs,
                                    true,
                                    5,
                                    0.5,
                                    u"last"_qs,
                                    QVariant::fromValue(&action),
                                    QVariant::fromValue(7L),
                                    QVariant::fromValue<QObject*>(&model),
                                    model.index(0, 0),
                                    model.index(1, 0)};
        QCOMPARE(heard, expected);
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

    void handlerMayEndEverything()
    {
        for (int victim = 0; victim < 3; ++victim) {
            QPointer<Emitter> sender = new Emitter;
            QPointer<QObject> parent = victim == 0 ? sender.data() : new QObject;
            QPointer<SignalHandler> handler;
            QString seen;
            // More than a function object keeps inside itself, and read after the end.
            const QString text = u"a text that lies in the function object"_qs;
            const auto end = [&, text, copy = text](const QString& value) {
                const std::array<QObject*, 3> victims{sender, parent, handler};
                seen += value;
                delete victims[static_cast<std::size_t>(victim)];
                seen += text + copy;
            };
            handler =
                SignalHandler::connectHandler<Text>(sender, SIGNAL(text(QString)), end, parent);
            Q_EMIT sender->text(u"value: "_qs);
            if (sender)
                Q_EMIT sender->text(u"again"_qs);
            QCOMPARE(seen, u"value: "_qs + text + text);
            QVERIFY(!handler);
            delete sender;
            delete parent;
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

    void filterMayEndTheWatched()
    {
        QPointer<QObject> watched = new QObject;
        const auto state = std::make_shared<int>(0);
        const auto end = [&watched, state](QObject*, QEvent*) {
            delete watched;
            ++*state;
            return true;
        };
        watched->installEventFilter(new EventFilter(end, watched));
        QEvent event(QEvent::User);
        QVERIFY(QCoreApplication::sendEvent(watched, &event));
        QVERIFY(!watched && *state == 1 && state.use_count() == 2);
    }
};

QTEST_MAIN(TestSignals)
#include "tst_signals.moc"

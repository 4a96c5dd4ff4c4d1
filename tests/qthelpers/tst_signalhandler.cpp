#include "emitter.h"

#include <VLBase/qthelpers/eventfilter.h>
#include <VLBase/qthelpers/signalhandler.h>

#include <QPointer>
#include <QStandardItemModel>
#include <QTest>

#include <memory>

using QObjectHelpers::EventFilter;
using QObjectHelpers::SignalHandler;

class TestSignalHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void carriesEverySignature();
    void refusalLeavesNothing_data();
    void refusalLeavesNothing();
    void refusesParentOfAnotherThread();
    void endsWithItsParent();
    void unsetSignaturesAreSilent();
    void functionKeepsItsState();
    void functionMayEndEverything_data();
    void functionMayEndEverything();
    void filterStopsOrPasses();
    void filterMayEndTheWatched();
    void emptyFilterThrows();
};

void TestSignalHandler::carriesEverySignature()
{
    Emitter emitter;
    QStringList heard;
    const auto hear = [&heard](const QString& what) { heard.append(what); };
    QAction action;
    QStandardItemModel model(2, 1);

    QVERIFY(
        SignalHandler::connectHandler<void()>(&emitter, "2plain()", [&] { hear(u"plain"_qs); }));
    QVERIFY(SignalHandler::connectHandler<void(bool)>(
        &emitter, SIGNAL(boolean(bool)), [&](bool v) { hear(v ? u"true"_qs : u"false"_qs); }));
    QVERIFY(SignalHandler::connectHandler<void(int)>(&emitter, "2integer(int)",
                                                     [&](int v) { hear(QString::number(v)); }));
    QVERIFY(SignalHandler::connectHandler<void(long)>(&emitter, SIGNAL(longInteger(long)),
                                                      [&](long v) { hear(QString::number(v)); }));
    QVERIFY(SignalHandler::connectHandler<void(double)>(
        &emitter, "2real(double)", [&](double v) { hear(QString::number(v)); }));
    QVERIFY(SignalHandler::connectHandler<void(const QString&)>(&emitter, "2text(const QString&)",
                                                                hear));
    QVERIFY(SignalHandler::connectHandler<void(QAction*)>(
        &emitter, SIGNAL(action(QAction*)),
        [&](QAction* v) { hear(v == &action ? u"action"_qs : u"other"_qs); }));
    QVERIFY(SignalHandler::connectHandler<void(QObject*)>(
        &emitter, "2object(QObject*)",
        [&](QObject* v) { hear(v == &model ? u"object"_qs : u"other"_qs); }));
    QVERIFY((SignalHandler::connectHandler<void(const QModelIndex&, const QModelIndex&)>(
        &emitter, "2indexes(const QModelIndex&, const QModelIndex&)",
        [&](const QModelIndex& a, const QModelIndex& b) {
            hear(QStringLiteral("%1-%2").arg(a.row()).arg(b.row()));
        })));

    Q_EMIT emitter.plain();
    Q_EMIT emitter.boolean(true);
    Q_EMIT emitter.integer(-7);
    Q_EMIT emitter.longInteger(2147483647L);
    Q_EMIT emitter.real(0.25);
    Q_EMIT emitter.text(u"\u00e9"_qs);
    Q_EMIT emitter.action(&action);
    Q_EMIT emitter.object(&model);
    Q_EMIT emitter.indexes(model.index(0, 0), model.index(1, 0));
    const QStringList expected{u"plain"_qs,      u"true"_qs,   u"-7"_qs,
                               u"2147483647"_qs, u"0.25"_qs,   u"\u00e9"_qs,
                               u"action"_qs,     u"object"_qs, u"0-1"_qs};
    QCOMPARE(heard, expected);
}

void TestSignalHandler::refusalLeavesNothing_data()
{
    QTest::addColumn<bool>("hasSender");
    QTest::addColumn<QByteArray>("signal");

    QTest::newRow("no sender") << false << QByteArray("2integer(int)");
    QTest::newRow("no signal") << true << QByteArray();
    QTest::newRow("misspelt") << true << QByteArray("2integr(int)");
    QTest::newRow("a slot's text") << true << QByteArray("1deleteLater()");
    QTest::newRow("other arguments") << true << QByteArray("2real(double)");
}

void TestSignalHandler::refusalLeavesNothing()
{
    QFETCH(bool, hasSender);
    QFETCH(QByteArray, signal);
    Emitter emitter;
    QObject parent;
    const auto captured = std::make_shared<int>(0);
    const std::function<void(int)> handler = [captured](int) {};

    for (QObject* owner : {static_cast<QObject*>(nullptr), &parent}) {
        QVERIFY(!SignalHandler::connectHandler<void(int)>(
            hasSender ? &emitter : nullptr, signal.isNull() ? nullptr : signal.constData(), handler,
            owner));
    }
    QVERIFY(emitter.children().isEmpty());
    QVERIFY(parent.children().isEmpty());
    QCOMPARE(captured.use_count(), 2L);
}

void TestSignalHandler::refusesParentOfAnotherThread()
{
    QThread thread;
    thread.start();
    Emitter emitter;
    auto* elsewhere = new QObject;
    elsewhere->moveToThread(&thread);
    const auto captured = std::make_shared<int>(0);
    const std::function<void()> handler = [captured] {};

    QVERIFY(!SignalHandler::connectHandler<void()>(&emitter, SIGNAL(plain()), handler, elsewhere));
    QCOMPARE(captured.use_count(), 2L);
    elsewhere->deleteLater();
    thread.quit();
    QVERIFY(thread.wait());
}

void TestSignalHandler::endsWithItsParent()
{
    auto sender = std::make_unique<Emitter>();
    Emitter other;
    auto parent = std::make_unique<QObject>();
    int calls = 0;
    const std::function<void()> count = [&calls] { ++calls; };
    const QPointer<SignalHandler> ofSender =
        SignalHandler::connectHandler<void()>(sender.get(), SIGNAL(plain()), count);
    const QPointer<SignalHandler> ofParent =
        SignalHandler::connectHandler<void()>(&other, SIGNAL(plain()), count, parent.get());
    const QPointer<SignalHandler> outlivesSender =
        SignalHandler::connectHandler<void()>(sender.get(), SIGNAL(plain()), count, parent.get());
    QCOMPARE(ofSender->parent(), sender.get());
    QCOMPARE(ofParent->parent(), parent.get());

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

void TestSignalHandler::unsetSignaturesAreSilent()
{
    Emitter emitter;
    int calls = 0;
    const std::unique_ptr<SignalHandler> handler(
        SignalHandler::createHandler<void(int)>([&calls](int) { ++calls; }, nullptr));
    QVERIFY(connect(&emitter, SIGNAL(plain()), handler.get(), SLOT(onSignal())));
    QVERIFY(connect(&emitter, SIGNAL(real(double)), handler.get(), SLOT(onSignal(double))));
    QVERIFY(connect(&emitter, SIGNAL(integer(int)), handler.get(), SLOT(onSignal(int))));

    Q_EMIT emitter.plain();
    Q_EMIT emitter.real(1.0);
    QCOMPARE(calls, 0);
    Q_EMIT emitter.integer(1);
    QCOMPARE(calls, 1);
}

void TestSignalHandler::functionKeepsItsState()
{
    Emitter emitter;
    QList<int> sums;
    SignalHandler::connectHandler<void(int)>(&emitter, SIGNAL(integer(int)),
                                             [&sums, sum = 0](int value) mutable {
                                                 sum += value;
                                                 sums.append(sum);
                                             });
    for (int value : {1, 2, 3})
        Q_EMIT emitter.integer(value);
    QCOMPARE(sums, QList<int>({1, 3, 6}));
}

void TestSignalHandler::functionMayEndEverything_data()
{
    QTest::addColumn<QString>("victim");

    for (const char* victim : {"sender", "parent", "handler"})
        QTest::newRow(victim) << QString::fromLatin1(victim);
}

void TestSignalHandler::functionMayEndEverything()
{
    QFETCH(QString, victim);
    QPointer<Emitter> sender = new Emitter;
    QPointer<QObject> parent = victim == u"sender" ? sender.data() : new QObject;
    QPointer<SignalHandler> handler;
    QString seen;
    // More than a function object keeps inside itself, and read after the end.
    const QString text = u"a text that lies in the function object"_qs;
    const auto end = [&, text, copy = text](const QString& value) {
        seen = value;
        if (victim == u"sender")
            delete sender;
        else if (victim == u"parent")
            delete parent;
        else
            delete handler;
        seen += text + copy;
    };
    handler = SignalHandler::connectHandler<void(const QString&)>(sender, SIGNAL(text(QString)),
                                                                  end, parent);

    const QString value = u"value: "_qs;
    Q_EMIT sender->text(value);
    QCOMPARE(seen, value + text + text);
    QVERIFY(!handler);
    if (sender)
        Q_EMIT sender->text(u"again"_qs);
    QCOMPARE(seen, value + text + text);
    delete sender;
    delete parent;
}

void TestSignalHandler::filterStopsOrPasses()
{
    QObject watched;
    QList<QEvent::Type> seen;
    EventFilter stopsNothing(
        [&seen](QObject*, QEvent* event) {
            seen.append(event->type());
            return false;
        },
        nullptr);
    EventFilter stopsUser(
        [&watched](QObject* object, QEvent* event) {
            return object == &watched && event->type() == QEvent::User;
        },
        nullptr);
    QEvent event(QEvent::User);

    QCoreApplication::sendEvent(&watched, &event);
    QVERIFY(seen.isEmpty());
    watched.installEventFilter(&stopsNothing);
    QCoreApplication::sendEvent(&watched, &event);
    QCOMPARE(seen, QList<QEvent::Type>{QEvent::User});
    // The filter installed last is asked first.
    watched.installEventFilter(&stopsUser);
    QVERIFY(QCoreApplication::sendEvent(&watched, &event));
    QCOMPARE(seen.size(), 1);
}

void TestSignalHandler::filterMayEndTheWatched()
{
    QPointer<QObject> watched = new QObject;
    const auto state = std::make_shared<int>(0);
    auto* filter = new EventFilter(
        [&watched, state](QObject*, QEvent*) {
            delete watched;
            ++*state;
            return true;
        },
        watched);
    watched->installEventFilter(filter);
    QEvent event(QEvent::User);
    QVERIFY(QCoreApplication::sendEvent(watched, &event));
    QVERIFY(!watched);
    QCOMPARE(*state, 1);
    QCOMPARE(state.use_count(), 1L);
}

void TestSignalHandler::emptyFilterThrows()
{
    EventFilter filter({}, nullptr);
    QEvent event(QEvent::User);
    QVERIFY_THROWS_EXCEPTION(std::bad_function_call, filter.eventFilter(this, &event));
}

QTEST_MAIN(TestSignalHandler)
#include "tst_signalhandler.moc"

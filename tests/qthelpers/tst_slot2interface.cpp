#include <VLBase/qthelpers/qtslot2interfaceconverter.h>

#include <QRegularExpression>
#include <QTest>
#include <QThread>

#include <functional>
#include <memory>
#include <utility>

namespace {

struct Listener : IQTSlot2InterfaceListener
{
    void OnSlot(int id, const QVariantList& arguments) override
    {
        heard += QStringLiteral("%1:").arg(id);
        for (const QVariant& argument : arguments)
            heard += QLatin1String(argument.typeName()) + u'=' + argument.toString() + u' ';
        if (then)
            std::exchange(then, nullptr)();
    }
    QString heard;
    std::function<void()> then;
};

class Sender : public QObject
{
    Q_OBJECT
signals:
    void nothing();
    void all(int, const QString&, double, QVariant, QObject*);
    void text(const QString&);
};

} // namespace

class TestSlot2Interface : public QObject
{
    Q_OBJECT

private slots:
    void carriesEveryArgument()
    {
        Listener listener;
        Sender sender;
        QTSlot2InterfaceConverter converter(&listener);
        QVERIFY(converter.connectSignal(&sender, SIGNAL(nothing()), -1));
        QVERIFY(converter.connectSignal(
            &sender, SIGNAL(all(int, const QString&, double, QVariant, QObject*)), 2));
        emit sender.nothing();
        emit sender.all(5, QStringLiteral("x"), 0.5, QVariant(7), nullptr);
        QCOMPARE(listener.heard,
                 QStringLiteral("-1:2:int=5 QString=x double=0.5 int=7 QObject*= "));
    }

    void refuses()
    {
        Listener listener;
        Sender sender;
        QTSlot2InterfaceConverter converter(&listener);
        for (const char* wrong : {SIGNAL(none()), SIGNAL(text(int)), SLOT(deleteLater()),
                                  "text(QString)", "", static_cast<const char*>(nullptr)}) {
            QTest::ignoreMessage(QtWarningMsg,
                                 QRegularExpression(QStringLiteral("No such signal Sender")));
            QVERIFY(!converter.connectSignal(&sender, wrong, 1));
        }
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such signal")));
        QVERIFY(!converter.connectSignal(nullptr, SIGNAL(nothing()), 1));
    }

    void countsConnections()
    {
        Listener listener;
        Sender sender, other;
        QTSlot2InterfaceConverter converter(&listener);
        const auto unique =
            static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection);
        QVERIFY(converter.connectSignal(&sender, SIGNAL(nothing()), 1, unique));
        QVERIFY(!converter.connectSignal(&sender, SIGNAL(nothing()), 2, unique));
        QVERIFY(converter.connectSignal(&sender, SIGNAL(nothing()), 3));
        QVERIFY(converter.connectSignal(&sender, SIGNAL(text(QString)), 4));
        QVERIFY(converter.connectSignal(&other, SIGNAL(nothing()), 5, unique));
        emit sender.nothing();
        QCOMPARE(listener.heard, QStringLiteral("1:3:"));
        QVERIFY(converter.disconnectSignal(&sender, SIGNAL(nothing())));
        QVERIFY(!converter.disconnectSignal(&sender, SIGNAL(nothing())));
        emit sender.nothing();
        emit other.nothing();
        emit sender.text({});
        QCOMPARE(listener.heard, QStringLiteral("1:3:5:4:QString= "));
    }

    // Who ends first, also in the call itself, and while a signal is under way.
    void endsInAnyOrder()
    {
        auto listener = std::make_unique<Listener>();
        auto sender = std::make_unique<Sender>();
        auto converter = std::make_unique<QTSlot2InterfaceConverter>(listener.get());
        for (const auto type : {Qt::AutoConnection, Qt::QueuedConnection})
            QVERIFY(converter->connectSignal(sender.get(), SIGNAL(text(QString)), 1, type));
        emit sender->text(QStringLiteral("a"));
        sender.reset();
        QCOMPARE(listener->heard, QStringLiteral("1:QString=a "));
        QCoreApplication::processEvents();
        QCOMPARE(listener->heard, QStringLiteral("1:QString=a 1:QString=a "));

        sender = std::make_unique<Sender>();
        QVERIFY(converter->connectSignal(sender.get(), SIGNAL(nothing()), 2));
        QVERIFY(converter->connectSignal(sender.get(), SIGNAL(nothing()), 3));
        listener->then = [&] { listener.reset(); };
        emit sender->nothing();
        QVERIFY(!listener);
        emit sender->nothing();

        Listener next;
        const Listener copy = next;
        converter->setListener(&next);
        next.then = [&] { converter.reset(); };
        emit sender->nothing();
        QCOMPARE(next.heard, QStringLiteral("2:"));
        QVERIFY(copy.heard.isEmpty() && !converter);
    }

    void hearsOtherThreads()
    {
        Listener listener;
        QTSlot2InterfaceConverter converter(&listener);
        QThread* const home = QThread::currentThread();
        QThread* heardIn = nullptr;
        listener.then = [&] { heardIn = QThread::currentThread(); };
        Sender sender;
        QVERIFY(converter.connectSignal(&sender, SIGNAL(text(QString)), 1));
        QThread* thread = QThread::create([&] { emit sender.text(QStringLiteral("far")); });
        thread->start();
        thread->wait();
        delete thread;
        QVERIFY(!heardIn);
        QCoreApplication::processEvents();
        QCOMPARE(heardIn, home);
        QCOMPARE(listener.heard, QStringLiteral("1:QString=far "));
    }
};

QTEST_GUILESS_MAIN(TestSlot2Interface)

#include "tst_slot2interface.moc"

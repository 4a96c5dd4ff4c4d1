#include <VLBase/qthelpers/qabstractsockethelpers.h>
#include <VLBase/qthelpers/qfiledialoghelpers.h>
#include <VLBase/qthelpers/qhostaddresshelpers.h>
#include <VLBase/qthelpers/qtimerhelpers.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QHostAddress>
#include <QNetworkInterface>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTranslator>

#include <memory>

using QFileDialogHelpers::AsyncGetExistingDirectory;

namespace {

/// Answers with the context and the length of what it is asked for.
class AskedTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return QLatin1String(context) + QLatin1Char(':') +
               QString::number(QByteArray(source).size());
    }
    bool isEmpty() const override { return false; }
};

/// Waits for the dialog and ends it, as a user would.
void answerDialog(QObject* context, const std::function<void(QFileDialog*)>& answer)
{
    auto* poll = new QTimer(context);
    QObject::connect(poll, &QTimer::timeout, context, [poll, answer] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        delete poll;
        answer(dialog);
    });
    poll->start(5);
}

} // namespace

class TestSmallHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void socketErrors_data();
    void socketErrors();
    void localAddresses_data();
    void localAddresses();
    void ownInterfacesAreLocal();
    void singleShotRunsOnce();
    void singleShotCanBeCancelled();
    void singleShotMayEndItsTimer();
    void directoryIsAskedLater();
    void cancelledDirectoryIsEmpty();
    void parentMayEndBeforeTheAnswer_data();
    void parentMayEndBeforeTheAnswer();
};

void TestSmallHelpers::socketErrors_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("text");

    QTest::newRow("first") << 0 << u"The connection was refused by the peer (or timed out)."_qs;
    QTest::newRow("7") << 7
                       << u"An error occurred with the network (e.g., the network cable was "
                          "accidentally plugged out)."_qs;
    QTest::newRow("no blank") << 15
                              << u"The connection to the proxy server was closed "
                                 "unexpectedly(before the connection to the final peer was "
                                 "established)."_qs;
    QTest::newRow("last") << 18
                          << u"The connection negotiation with the proxy server because the "
                             "response from the proxy server could not be understood."_qs;
    for (int other : {-1, 19, 42})
        QTest::addRow("other %d", other) << other << u"An unidentified error occurred."_qs;
}

void TestSmallHelpers::socketErrors()
{
    QFETCH(int, error);
    QFETCH(QString, text);
    const auto code = static_cast<QAbstractSocket::SocketError>(error);
    QCOMPARE(QAbstractSocketHelpers::errorString(code), text);
    AskedTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(QAbstractSocketHelpers::errorString(code),
             QStringLiteral("QAbstractSocketHelpers:%1").arg(text.size()));
}

void TestSmallHelpers::localAddresses_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("local");

    QTest::newRow("loopback") << u"127.0.0.1"_qs << true;
    QTest::newRow("loopback 6") << u"::1"_qs << true;
    QTest::newRow("127.0.0.x") << u"127.0.0.5"_qs << true;
    QTest::newRow("127.0.1.x") << u"127.0.1.5"_qs << false;
    QTest::newRow("documentation") << u"192.0.2.1"_qs << false;
    QTest::newRow("documentation 6") << u"2001:db8::1"_qs << false;
    QTest::newRow("no address") << QString() << false;
}

void TestSmallHelpers::localAddresses()
{
    QFETCH(QString, address);
    QTEST(QHostAddressHelpers::isIpLocal(QHostAddress(address)), "local");
}

void TestSmallHelpers::ownInterfacesAreLocal()
{
    for (const QHostAddress& address : QNetworkInterface::allAddresses())
        QVERIFY2(QHostAddressHelpers::isIpLocal(address), qPrintable(address.toString()));
}

void TestSmallHelpers::singleShotRunsOnce()
{
    int calls = 0;
    const QPointer<QTimer> timer = QTimerHelpers::singleShot(20, [&calls] { ++calls; });
    QVERIFY(timer->isSingleShot() && timer->isActive());
    QCOMPARE(timer->parent(), nullptr);
    QCOMPARE(timer->interval(), 20);
    QCOMPARE(timer->timerType(), Qt::PreciseTimer);
    QCOMPARE(calls, 0);
    QTRY_VERIFY(!timer);
    QCOMPARE(calls, 1);
    const QPointer<QTimer> empty = QTimerHelpers::singleShot(0, {});
    QTRY_VERIFY(!empty);
}

void TestSmallHelpers::singleShotCanBeCancelled()
{
    int calls = 0;
    delete QTimerHelpers::singleShot(0, [&calls] { ++calls; });
    const std::unique_ptr<QTimer> stopped(QTimerHelpers::singleShot(0, [&calls] { ++calls; }));
    stopped->stop();
    QTest::qWait(20);
    QCOMPARE(calls, 0);
}

void TestSmallHelpers::singleShotMayEndItsTimer()
{
    QPointer<QTimer> timer;
    const QString text = u"a text that lies in the function object"_qs;
    QString seen;
    timer = QTimerHelpers::singleShot(0, [&timer, &seen, text, copy = text] {
        delete timer;
        seen = text + copy;
    });
    QTRY_COMPARE(seen, text + text);
    QVERIFY(!timer);
}

void TestSmallHelpers::directoryIsAskedLater()
{
    QTemporaryDir directory;
    QWidget parent;
    parent.show();
    QStringList selected;
    AsyncGetExistingDirectory::asyncGetExistingDirectory(
        [&selected](const QString& path) { selected.append(path); }, &parent, u"Where to"_qs,
        directory.path(), QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    QVERIFY(!QApplication::activeModalWidget());
    const QPointer<QObject> chooser = parent.findChild<AsyncGetExistingDirectory*>();
    QVERIFY(chooser);
    QString caption;
    answerDialog(&parent, [&](QFileDialog* dialog) {
        caption = dialog->windowTitle();
        QMetaObject::invokeMethod(dialog, "accept");
    });
    QTRY_COMPARE(selected, QStringList(directory.path()));
    QCOMPARE(caption, u"Where to"_qs);
    QTRY_VERIFY(!chooser);
    QCOMPARE(selected.size(), 1);
}

void TestSmallHelpers::cancelledDirectoryIsEmpty()
{
    QStringList selected;
    answerDialog(this, [](QFileDialog* dialog) { dialog->reject(); });
    AsyncGetExistingDirectory::asyncGetExistingDirectory(
        [&selected](const QString& path) { selected.append(path); }, nullptr, QString(), QString(),
        QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    QTRY_COMPARE(selected, QStringList(QString()));
}

void TestSmallHelpers::parentMayEndBeforeTheAnswer_data()
{
    QTest::addColumn<QString>("moment");

    for (const char* moment : {"before the dialog", "dialog open", "in the answer"})
        QTest::newRow(moment) << QString::fromLatin1(moment);
}

void TestSmallHelpers::parentMayEndBeforeTheAnswer()
{
    QFETCH(QString, moment);
    auto* parent = new QWidget;
    const QPointer<QWidget> guard(parent);
    const auto state = std::make_shared<int>(0);
    AsyncGetExistingDirectory::asyncGetExistingDirectory(
        [state, parent](const QString&) {
            delete parent;
            ++*state;
        },
        parent, QString(), QString(), QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    if (moment == u"before the dialog") {
        delete parent;
    } else {
        answerDialog(this, [&](QFileDialog* dialog) {
            if (moment == u"dialog open")
                delete parent;
            else
                dialog->reject();
        });
    }
    QTRY_VERIFY(!guard);
    QTRY_COMPARE(state.use_count(), 1L);
    QCOMPARE(*state, moment == u"in the answer" ? 1 : 0);
}

QTEST_MAIN(TestSmallHelpers)
#include "tst_smallhelpers.moc"

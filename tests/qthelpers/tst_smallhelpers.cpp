#include <VLBase/qthelpers/qabstractsockethelpers.h>
#include <VLBase/qthelpers/qfiledialoghelpers.h>
#include <VLBase/qthelpers/qhostaddresshelpers.h>
#include <VLBase/qthelpers/qtimerhelpers.h>

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

constexpr QFileDialog::Options options =
    QFileDialog::Options(QFileDialog::ShowDirsOnly) | QFileDialog::DontUseNativeDialog;

/// Answers with the context and the length of what it is asked for.
class AskedTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return QStringLiteral("%1:%2").arg(QLatin1String(context)).arg(qstrlen(source));
    }
    bool isEmpty() const override { return false; }
};

/// Waits for the dialog and ends it, as a user would.
void answerDialog(const std::function<void(QFileDialog*)>& answer)
{
    auto* poll = new QTimer(qApp);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, answer] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        poll->stop();
        poll->deleteLater();
        answer(dialog);
    });
    poll->start(5);
}

} // namespace

class TestSmallHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void socketErrors()
    {
        const std::pair<int, QString> cases[] = {
            {0, u"The connection was refused by the peer (or timed out)."_qs},
            {15, u"The connection to the proxy server was closed unexpectedly(before the "
                 "connection to the final peer was established)."_qs},
            {18, u"The connection negotiation with the proxy server because the response from the "
                 "proxy server could not be understood."_qs},
            {19, u"An unidentified error occurred."_qs},
        };
        for (const auto& [error, text] : cases) {
            const auto code = static_cast<QAbstractSocket::SocketError>(error);
            QCOMPARE(QAbstractSocketHelpers::errorString(code), text);
            AskedTranslator translator;
            QVERIFY(QCoreApplication::installTranslator(&translator));
            QCOMPARE(QAbstractSocketHelpers::errorString(code),
                     QStringLiteral("QAbstractSocketHelpers:%1").arg(text.size()));
        }
    }

    void localAddresses()
    {
        for (const char* address : {"127.0.0.1", "::1", "127.0.0.5", "::ffff:127.0.0.1"})
            QVERIFY2(QHostAddressHelpers::isIpLocal(QHostAddress(QLatin1String(address))), address);
        for (const char* address :
             {"127.0.1.5", "192.0.2.1", "2001:db8::1", "::ffff:192.0.2.1", ""})
            QVERIFY2(!QHostAddressHelpers::isIpLocal(QHostAddress(QLatin1String(address))),
                     address);
        for (const QHostAddress& address : QNetworkInterface::allAddresses())
            QVERIFY2(QHostAddressHelpers::isIpLocal(address), qPrintable(address.toString()));
    }

    void singleShotRunsOnce()
    {
        int calls = 0;
        const QPointer<QTimer> timer = QTimerHelpers::singleShot(20, [&calls] { ++calls; });
        QVERIFY(timer->isSingleShot() && timer->isActive() && !timer->parent());
        QCOMPARE(timer->interval(), 20);
        QCOMPARE(timer->timerType(), Qt::PreciseTimer);
        const QPointer<QTimer> empty = QTimerHelpers::singleShot(0, {});
        const QPointer<QTimer> negative = QTimerHelpers::singleShot(-5, {});
        QTRY_VERIFY(!timer && !empty && !negative);
        QCOMPARE(calls, 1);
        const QPointer<QTimer> throwing =
            QTimerHelpers::singleShot(30'000, [] { throw std::runtime_error("no"); });
        QTimerEvent event(throwing->timerId());
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, QCoreApplication::sendEvent(throwing, &event));
        QTRY_VERIFY(!throwing);

        delete QTimerHelpers::singleShot(0, [&calls] { ++calls; });
        const std::unique_ptr<QTimer> stopped(QTimerHelpers::singleShot(0, [&calls] { ++calls; }));
        stopped->stop();
        QTest::qWait(20);
        QCOMPARE(calls, 1);
    }

    void directoryIsAskedLater()
    {
        const QTemporaryDir directory;
        QWidget parent;
        parent.show();
        QStringList selected;
        const auto select = [&selected](const QString& path) { selected.append(path); };
        AsyncGetExistingDirectory::asyncGetExistingDirectory(select, &parent, u"Where to"_qs,
                                                             directory.path(), options);
        QVERIFY(!QApplication::activeModalWidget());
        const QPointer<QObject> chooser = parent.findChild<AsyncGetExistingDirectory*>();
        QVERIFY(chooser);
        QString caption;
        answerDialog([&](QFileDialog* dialog) {
            caption = dialog->windowTitle();
            QMetaObject::invokeMethod(dialog, "accept");
        });
        QTRY_COMPARE(selected, QStringList(directory.path()));
        QCOMPARE(caption, u"Where to"_qs);
        QTRY_VERIFY(!chooser);

        answerDialog([](QFileDialog* dialog) { dialog->reject(); });
        AsyncGetExistingDirectory::asyncGetExistingDirectory(select, nullptr, QString(), QString(),
                                                             options);
        QTRY_COMPARE(selected, QStringList({directory.path(), QString()}));

        AsyncGetExistingDirectory::asyncGetExistingDirectory(
            [](const QString&) { throw std::runtime_error("no"); }, &parent, QString(), QString(),
            options);
        const QPointer<QObject> throwing = parent.findChild<AsyncGetExistingDirectory*>();
        QCoreApplication::removePostedEvents(throwing); // so that it is not asked twice
        answerDialog([](QFileDialog* dialog) { dialog->reject(); });
        QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                                 QMetaObject::invokeMethod(throwing, "onStart"));
        QTRY_VERIFY(!throwing);
    }

    void parentMayEndBeforeTheAnswer()
    {
        for (const char* moment : {"before the dialog", "dialog open", "in the answer"}) {
            QPointer<QWidget> parent = new QWidget;
            const auto state = std::make_shared<int>(0);
            AsyncGetExistingDirectory::asyncGetExistingDirectory(
                [state, parent](const QString&) {
                    delete parent;
                    ++*state;
                },
                parent, QString(), QString(), options);
            if (*moment == 'b')
                delete parent;
            else
                answerDialog([&](QFileDialog* dialog) {
                    if (*moment == 'd')
                        delete parent;
                    else
                        dialog->reject();
                });
            QTRY_VERIFY2(!parent, moment);
            QTRY_VERIFY2(state.use_count() == 1, moment);
            QCOMPARE(*state, *moment == 'i' ? 1 : 0);
        }
    }
};

QTEST_MAIN(TestSmallHelpers)
#include "tst_smallhelpers.moc"

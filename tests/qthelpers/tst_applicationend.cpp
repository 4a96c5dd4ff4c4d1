#include <VLBase/qthelpers/awaitsignal.h>
#include <VLBase/qthelpers/qfiledialoghelpers.h>
#include <VLBase/qthelpers/qtimerhelpers.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>

/// What happens when the application goes first: each case makes one of its own.
class TestApplicationEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pendingCallsGoWithTheApplication()
    {
        const auto state = std::make_shared<bool>(false);
        {
            QApplication application(m_argc, m_argv);
            QTimerHelpers::singleShot(60'000, [state] { *state = true; });
            QTimerHelpers::singleShot(0, [state] { *state = true; });
            QFileDialogHelpers::AsyncGetExistingDirectory::asyncGetExistingDirectory(
                [state](const QString&) { *state = true; });
            QCOMPARE(state.use_count(), 4L);
        }
        QCOMPARE(state.use_count(), 1L);
        QVERIFY(!*state);
    }

    void pendingCallsGoWithTheirThread()
    {
        QCoreApplication application(m_argc, m_argv);
        const auto state = std::make_shared<std::atomic<bool>>(false);
        std::unique_ptr<QThread> thread(QThread::create([state] {
            QTimerHelpers::singleShot(60'000, [state] { *state = true; });
            QTimerHelpers::singleShot(0, [state] { *state = true; });
            QObjectHelpers::wait(30);
        }));
        thread->start();
        QVERIFY(thread->wait());
        QVERIFY(*state);
        thread.reset();
        QCOMPARE(state.use_count(), 1L);
    }

    void quitEndsAWaitAndIsIssuedAgain()
    {
        QCoreApplication application(m_argc, m_argv);
        QObject silent;
        // The quit of a thread is its own affair; a repetition would come before the one below.
        std::atomic<bool> over{false};
        QSemaphore ended;
        const std::unique_ptr<QThread> worker(QThread::create([&over, &ended] {
            QTimer::singleShot(0, [] { QThread::currentThread()->quit(); });
            QObject own;
            if (!QObjectHelpers::awaitSignal(&own, "2destroyed()", -1))
                ended.release();
            for (; !over; QThread::msleep(10))
                QCoreApplication::processEvents();
        }));
        worker->start();
        QVERIFY(ended.tryAcquire(1, 30'000));
        QThread::msleep(200);

        bool result = true;
        QTimer::singleShot(0, &silent, [&] {
            QTimer::singleShot(0, &silent, [] { QCoreApplication::quit(); });
            result = QObjectHelpers::awaitSignal(&silent, "2destroyed()", -1);
        });
        QElapsedTimer clock;
        clock.start();
        QCoreApplication::exec();
        QVERIFY(!result);
        // An outer loop that is entered only now ends by the quit that was put off.
        QVERIFY(clock.elapsed() < 4'000);
        QCoreApplication::exec();
        over = true;
        QVERIFY(worker->wait());
        QVERIFY(clock.elapsed() >= 4'999);
        QVERIFY(clock.elapsed() < 30'000);
    }

private:
    int m_argc = 1;
    char m_name[22] = "tst_applicationend";
    char* m_argv[2] = {m_name, nullptr};
};

QTEST_APPLESS_MAIN(TestApplicationEnd)
#include "tst_applicationend.moc"

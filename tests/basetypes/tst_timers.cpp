#include <VLBase/basetypes/objecttimer.h>
#include <VLBase/basetypes/timersave.h>

#include <QtTest>

#include <functional>
#include <memory>

using Vela::ObjectTimer;

namespace {

class Callback : public Vela::IHasTimerCallback
{
public:
    void OnTimer(int timerId) override
    {
        fired.append(timerId);
        action(timerId);
    }

    QList<int> fired;
    std::function<void(int)> action = [](int) {};
};

// Destroyed after everything that is made on first use, and then still holding a lock.
TimerSaveObject staticToken;

bool lock(const char* name, TimerSaveObject& token)
{
    return TimerSave::Instance().LockTimerSaveObject(QLatin1String(name), token);
}

} // namespace

class tst_Timers : public QObject
{
    Q_OBJECT

private slots:
    void firesUntilKilled()
    {
        Callback callback;
        const std::unique_ptr<ObjectTimer> timer(ObjectTimer::create(&callback));
        const int quick = timer->StartTimer(1);
        QVERIFY(timer->StartTimer(1'000'000) != quick);
        QTRY_VERIFY(callback.fired.size() >= 3);
        timer->KillTimer(quick);
        callback.fired.clear();
        QTest::qWait(20);
        QCOMPARE(callback.fired, QList<int>());
    }

    // The callback may do everything to the object that calls it.
    void callbackChangesTheTimers()
    {
        Callback callback;
        std::unique_ptr<ObjectTimer> timer;
        int another = 0;
        const std::tuple<int, std::function<void(int)>> cases[] = {
            {2, [&](int id) { timer->KillTimer(id); }},
            {1, [&](int) { timer->KillTimers(); }},
            {1, [&](int) { timer.reset(); }},
            {3,
             [&](int id) {
                 timer->KillTimer(id);
                 another = another ? another : timer->StartTimer(0);
             }},
        };
        for (const auto& [calls, action] : cases) {
            callback.fired.clear();
            callback.action = action;
            timer = std::make_unique<ObjectTimer>(&callback);
            timer->StartTimer(0);
            timer->StartTimer(0);
            QTRY_VERIFY(callback.fired.size() >= calls);
            QTest::qWait(20); // No more of them.
            QCOMPARE(callback.fired.size(), calls);
        }
        QCOMPARE(callback.fired.last(), another);
    }

    void withoutCallbackOrTimer()
    {
        ObjectTimer timer(nullptr);
        timer.KillTimers();
        QVERIFY(timer.StartTimer(0) != 0);
        QTest::qWait(5);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"negative intervals"_qs));
        QCOMPARE(timer.StartTimer(-1), 0);
    }

    void locks()
    {
        TimerSaveObject again;
        {
            TimerSaveObject token, another;
            QVERIFY(lock("poll", token));
            {
                TimerSaveObject holdsNothing;
                QVERIFY(!lock("poll", holdsNothing));
            }
            QVERIFY(!lock("poll", again));
            QVERIFY(lock("Poll", another));
        }
        QVERIFY(lock("poll", again));
        TimerSave::Instance().UnLockTimerSaveObject(QStringLiteral("poll"));
        QVERIFY(lock("poll", again));
        std::make_unique<TimerSaveObject>(again).reset(); // a copy releases as well
        QVERIFY(lock("poll", again));
        QVERIFY(lock("static", staticToken));
        for (int twice = 0; twice < 2; ++twice) { // the empty name is a name
            TimerSaveObject token;
            QVERIFY(lock("", token) && !lock("", again));
        }
    }
};

QTEST_GUILESS_MAIN(tst_Timers)
#include "tst_timers.moc"

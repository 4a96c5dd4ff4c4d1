#include <VLBase/basetypes/objecttimer.h>
#include <VLBase/basetypes/timersave.h>

#include <QtTest>

#include <functional>
#include <memory>
#include <utility>

using Vela::ObjectTimer;

namespace {

class Callback : public Vela::IHasTimerCallback
{
public:
    void OnTimer(int timerId) override
    {
        fired.append(timerId);
        if (action)
            action(timerId);
    }

    QList<int> fired;
    std::function<void(int)> action;
};

// Destroyed after everything that is made on first use, and then still holding a lock.
TimerSaveObject staticToken;

} // namespace

class tst_Timers : public QObject
{
    Q_OBJECT

private slots:
    void firesUntilKilled();
    void callbackKillsItsTimer();
    void callbackStartsAnother();
    void callbackKillsAll();
    void callbackDestroysTheObject();
    void withoutCallbackOrTimer();
    void locks();
    void copiesOfAToken();
    void tokenOutlivesMain();
};

void tst_Timers::firesUntilKilled()
{
    Callback callback;
    const std::unique_ptr<ObjectTimer> timer(ObjectTimer::create(&callback));
    const int quick = timer->StartTimer(1);
    const int slow = timer->StartTimer(1'000'000);
    QVERIFY(quick != 0 && slow != 0 && quick != slow);
    QTRY_VERIFY(callback.fired.size() >= 3);
    timer->KillTimer(quick);
    callback.fired.clear();
    QTest::qWait(20);
    QCOMPARE(callback.fired, QList<int>());
    timer->KillTimers();
    timer->KillTimers();
}

void tst_Timers::callbackKillsItsTimer()
{
    Callback callback;
    ObjectTimer timer(&callback);
    callback.action = [&timer](int id) { timer.KillTimer(id); };
    const int once = timer.StartTimer(0);
    QTest::qWait(20);
    QCOMPARE(callback.fired, QList<int>{once});
}

void tst_Timers::callbackStartsAnother()
{
    Callback callback;
    ObjectTimer timer(&callback);
    int second = 0;
    callback.action = [&](int id) {
        timer.KillTimer(id);
        if (second == 0)
            second = timer.StartTimer(0);
    };
    const int first = timer.StartTimer(0);
    QTest::qWait(20);
    QCOMPARE(callback.fired, (QList<int>{first, second}));
}

void tst_Timers::callbackKillsAll()
{
    Callback callback;
    ObjectTimer timer(&callback);
    callback.action = [&timer](int) { timer.KillTimers(); };
    for (int i = 0; i < 5; ++i)
        timer.StartTimer(0);
    QTest::qWait(20);
    QCOMPARE(callback.fired.size(), 1);
}

void tst_Timers::callbackDestroysTheObject()
{
    Callback callback;
    auto timer = std::make_unique<ObjectTimer>(&callback);
    callback.action = [&timer](int) { timer.reset(); };
    timer->StartTimer(0);
    timer->StartTimer(0);
    QTest::qWait(20);
    QCOMPARE(callback.fired.size(), 1);
    QVERIFY(!timer);
}

void tst_Timers::withoutCallbackOrTimer()
{
    ObjectTimer timer(nullptr);
    QVERIFY(timer.StartTimer(0) != 0);
    QTest::qWait(5);
    QTest::ignoreMessage(QtWarningMsg,
                         "QObject::startTimer: Timers cannot have negative intervals");
    QCOMPARE(timer.StartTimer(-1), 0);
    timer.KillTimers();
}

void tst_Timers::locks()
{
    const QString name = QStringLiteral("poll");
    {
        TimerSaveObject token;
        TimerSaveObject other;
        other.SetName(QStringLiteral("never locked"));
        QVERIFY(TimerSave::Instance().LockTimerSaveObject(name, token));
        QVERIFY(!TimerSave::Instance().LockTimerSaveObject(name, other));
        {
            TimerSaveObject holdsNothing;
            QVERIFY(!TimerSave::Instance().LockTimerSaveObject(name, holdsNothing));
        }
        QVERIFY(!TimerSave::Instance().LockTimerSaveObject(name, other));
        TimerSaveObject another;
        QVERIFY(TimerSave::Instance().LockTimerSaveObject(QStringLiteral("Poll"), another));
    }
    TimerSaveObject again;
    QVERIFY(TimerSave::Instance().LockTimerSaveObject(name, again));
    TimerSave::Instance().UnLockTimerSaveObject(name);
    QVERIFY(TimerSave::Instance().LockTimerSaveObject(name, again));
}

void tst_Timers::copiesOfAToken()
{
    const QString name = QStringLiteral("copied");
    TimerSaveObject token;
    QVERIFY(TimerSave::Instance().LockTimerSaveObject(name, token));
    {
        const TimerSaveObject copy = token;
        Q_UNUSED(copy);
    }
    TimerSaveObject next;
    QVERIFY(TimerSave::Instance().LockTimerSaveObject(name, next));
}

void tst_Timers::tokenOutlivesMain()
{
    QVERIFY(TimerSave::Instance().LockTimerSaveObject(QStringLiteral("static"), staticToken));
}

QTEST_GUILESS_MAIN(tst_Timers)
#include "tst_timers.moc"

#include <VLBase/utilities/vlthread.h>

#include <QElapsedTimer>
#include <QtTest>

#include <atomic>
#include <functional>
#include <string>

namespace {

/// Counts the calls; `order` is read when the thread has ended.
class Work : public IRun
{
public:
    bool Step() override
    {
        note('S');
        ++steps;
        return step();
    }
    void Init() override
    {
        thread = QThread::currentThread();
        note('I');
    }
    void Exit() override { note('E'); }
    void Done() override
    {
        note('D');
        done = true;
    }

    std::function<bool()> step = [] { return false; };
    std::string order;
    std::atomic<int> steps{0};
    std::atomic<bool> done{false};
    QThread* thread = nullptr;

private:
    void note(char what)
    {
        // Runs of steps are one.
        if (order.empty() || order.back() != what)
            order += what;
    }
};

} // namespace

class VLThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsWhenTheStepSaysSo();
    void finishEndsAfterTheStep();
    void destructionEndsTheThread();
    void destructionBeforeTheFirstStep();
    void aFinishedThreadStepsNoMore();
    void sleeps();
};

void VLThreadTest::endsWhenTheStepSaysSo()
{
    Work work;
    work.step = [&work] { return work.steps < 3; };
    VLThread thread(work);
    QCOMPARE(thread.parent(), nullptr);
    thread.start();
    QVERIFY(thread.wait(30'000));
    QCOMPARE(work.order, std::string("ISED"));
    QCOMPARE(work.steps.load(), 3);
    QCOMPARE(work.thread, &thread);
}

void VLThreadTest::finishEndsAfterTheStep()
{
    Work work;
    std::atomic<bool> release{false};
    work.step = [&release] {
        while (!release)
            QThread::yieldCurrentThread();
        return true;
    };
    VLThread thread(work);
    thread.start();
    while (work.steps == 0)
        QThread::yieldCurrentThread();
    QVERIFY(!thread.Finish(0));
    QVERIFY(!thread.Finish(20));
    QVERIFY(!work.done);
    release = true;
    QVERIFY(thread.Finish(30'000));
    QCOMPARE(work.order, std::string("ISED"));
    QCOMPARE(work.steps.load(), 1);
}

void VLThreadTest::destructionEndsTheThread()
{
    for (int round = 0; round < 50; ++round) {
        Work work;
        work.step = [] { return true; };
        {
            VLThread thread(work);
            thread.start();
            while (work.steps == 0)
                QThread::yieldCurrentThread();
        }
        QVERIFY(work.done);
        QCOMPARE(work.order, std::string("ISED"));
    }
}

void VLThreadTest::destructionBeforeTheFirstStep()
{
    for (int round = 0; round < 50; ++round) {
        Work work;
        work.step = [] { return true; };
        {
            VLThread thread(work);
            thread.start();
        }
        QVERIFY(work.done);
    }
    Work never;
    {
        const VLThread thread(never);
    }
    QVERIFY(!never.done);
}

void VLThreadTest::aFinishedThreadStepsNoMore()
{
    Work work;
    VLThread thread(work);
    QVERIFY(thread.Finish(0));
    thread.start();
    QVERIFY(thread.wait(30'000));
    QCOMPARE(work.order, std::string("IED"));
}

void VLThreadTest::sleeps()
{
    QElapsedTimer clock;
    clock.start();
    VLThread::msleep(30);
    QVERIFY(clock.elapsed() >= 29);
    VLThread::sleep(0);
}

QTEST_APPLESS_MAIN(VLThreadTest)
#include "tst_vlthread.moc"

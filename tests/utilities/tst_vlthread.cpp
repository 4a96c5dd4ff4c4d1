#include <VLBase/utilities/vlthread.h>

#include <QtTest>

#include <atomic>
#include <string>

namespace {

/// Notes the calls; `order` is read when the thread has ended. `Finish` tells that to a thread
/// sanitizer too, which does not see into QThread::wait.
class Work : public IRun
{
public:
    /// Steps end at once, but the third says that there is no more to do when `endless` is false.
    explicit Work(bool endless)
        : m_endless(endless)
    {
    }
    bool Step() override
    {
        note('S');
        ++steps;
        while (blocked)
            QThread::yieldCurrentThread();
        return m_endless || steps < 3;
    }
    void Init() override
    {
        thread = QThread::currentThread();
        note('I');
    }
    void Exit() override { note('E'); }
    void Done() override { note('D'); }

    std::string order;
    std::atomic<int> steps{0};
    std::atomic<bool> blocked{false};
    QThread* thread = nullptr;

private:
    void note(char what)
    {
        // Runs of steps are one.
        if (order.empty() || order.back() != what)
            order += what;
    }
    bool m_endless;
};

} // namespace

class VLThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsWhenTheStepSaysSo()
    {
        Work work(false);
        VLThread thread(work);
        thread.start();
        QVERIFY(thread.wait(30'000) && thread.Finish(0));
        QVERIFY(work.order == "ISED" && work.steps == 3 && work.thread == &thread);
    }

    void finishEndsAfterTheStep()
    {
        Work work(true);
        work.blocked = true;
        VLThread thread(work);
        thread.start();
        QTRY_COMPARE(work.steps.load(), 1);
        QVERIFY(!thread.Finish(0) && !thread.Finish(20));
        work.blocked = false;
        QVERIFY(thread.Finish(30'000));
        QVERIFY(work.order == "ISED" && work.steps == 1);
        work.order.clear();
        thread.start(); // once asked, always asked
        QVERIFY(thread.wait(30'000) && thread.Finish(0));
        QVERIFY(work.order == "IED");
    }

    void destructionEndsTheThread()
    {
        for (int round = 0; round < 100; ++round) {
            Work work(true);
            {
                VLThread thread(work);
                thread.start();
                while (round % 2 == 0 && work.steps == 0)
                    QThread::yieldCurrentThread();
            }
            QVERIFY(work.order == "ISED" || (round % 2 == 1 && work.order == "IED"));
        }
    }
};

QTEST_APPLESS_MAIN(VLThreadTest)
#include "tst_vlthread.moc"

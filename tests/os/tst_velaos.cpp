// The one object of the process, its application thread, stamps and the error slot: what must
// hold across threads.

#include <VLBase/os/velaos.h>
#include <VLBase/os/velasystem.h>
#include <VLBase/platform/debugoutput.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QProcess>
#include <QTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <thread>
#include <type_traits>
#include <vector>

int threadIdBesideSystemHeaders(); // in withsystemheaders.cpp

namespace {

/// Opens what applications reach only by deriving.
class Service : public VelaSystem
{
public:
    using VelaSystem::setAppThread;
    using VelaSystem::SetAppThreadId;
};

template <typename Work> void inThreads(int count, Work work)
{
    std::atomic<int> waiting{count};
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&waiting, &work, i] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            work(static_cast<std::size_t>(i));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

/// Made before the service, so destroyed after all that the service could have registered.
struct LateUser
{
    bool enabled = false;
    ~LateUser()
    {
        if (!enabled)
            return;
        IVelaOS& os = VelaOS::Get();
        const bool works = os.GetTimestamp() > 0 && !os.GetWorkStationName().empty() &&
                           std::strcmp(os.GetEnvironmentVar("VLBASE_LATE"), "late") == 0;
        std::puts(works ? "works" : "fails");
        std::fflush(stdout);
    }
};
LateUser s_lateUser;

int runLateUser()
{
    s_lateUser.enabled = true;
    qputenv("VLBASE_LATE", "late");
    VelaOS::Get().GetEnvironmentVar("VLBASE_LATE");
    return 0;
}

int writeToDebugger()
{
    vlbase::platform::writeToDebugger(L"a \u00e9 \u20ac b\n");
    return 0;
}

} // namespace

static_assert(std::is_abstract_v<IVelaOS> && std::is_abstract_v<VelaOS>);
static_assert(std::is_copy_constructible_v<Service> && std::is_copy_assignable_v<Service>);
static_assert(std::has_virtual_destructor_v<IVelaOS>);

class TestVelaOS : public QObject
{
    Q_OBJECT

private slots:
    // Comes first: the process's service must not exist yet.
    void firstThreadBecomesApplicationThread()
    {
        constexpr std::size_t count = 8;
        std::array<IVelaOS*, count> services{};
        std::array<int, count> ids{};
        std::array<bool, count> isAppThread{};
        inThreads(count, [&](std::size_t i) {
            services[i] = i % 2 == 0 ? &VelaOS::Get() : &VelaOS::GetInstance();
            ids[i] = services[i]->GetCurrentThreadId();
            isAppThread[i] = services[i]->IsAppThread();
        });

        IVelaOS& os = VelaOS::Get();
        for (std::size_t i = 0; i < count; ++i) {
            QCOMPARE(services[i], &os);
            QCOMPARE(isAppThread[i], ids[i] == os.GetAppThreadId());
        }
        QCOMPARE(std::count(isAppThread.begin(), isAppThread.end(), true), 1);
        QVERIFY(!os.IsAppThread());
        QVERIFY(!os.IsAppThreadOrNoAppThreadExists());
        QCOMPARE(threadIdBesideSystemHeaders(), os.GetCurrentThreadId());
    }

    void applicationThreadMoves()
    {
        Service service;
        QVERIFY(service.IsAppThread());
        std::thread([&service] {
            QVERIFY(!service.IsAppThread());
            service.SetAppThreadId();
            QVERIFY(service.IsAppThread());
        }).join();
        QVERIFY(!service.IsAppThread());
        QVERIFY(!service.IsAppThreadOrNoAppThreadExists());

        const Service copy(service);
        QCOMPARE(Service(copy).GetAppThreadId(), service.GetAppThreadId());

        service.setAppThread(0);
        QVERIFY(!service.IsAppThread());
        QVERIFY(service.IsAppThreadOrNoAppThreadExists());
    }

    void stampsRiseOverAllThreads()
    {
        constexpr std::size_t threadCount = 4;
        constexpr std::size_t stampCount = 20000;
        std::array<std::vector<quint64>, threadCount> stamps;
        inThreads(threadCount, [&stamps](std::size_t i) {
            for (std::size_t n = 0; n < stampCount; ++n)
                stamps[i].push_back(VelaOS::Get().GetTimestamp());
        });

        std::vector<quint64> all;
        for (const std::vector<quint64>& ofThread : stamps) {
            QVERIFY(std::is_sorted(ofThread.begin(), ofThread.end()));
            all.insert(all.end(), ofThread.begin(), ofThread.end());
        }
        std::sort(all.begin(), all.end());
        QVERIFY(std::adjacent_find(all.begin(), all.end()) == all.end());
        // Within a millisecond one after the other, none left out.
        for (std::size_t n = 1; n < all.size(); ++n)
            QVERIFY(all[n] == all[n - 1] + 1 || all[n] % 1000 == 0);
    }

    void clocksTellTheTime()
    {
        IVelaOS& os = VelaOS::Get();
        const auto before = static_cast<quint64>(QDateTime::currentMSecsSinceEpoch());
        const quint64 milliseconds = os.GetMSecTimestamp();
        const qint32 seconds = os.GetSecTimestamp();
        const quint64 stamp = os.GetTimestamp();
        const auto after = static_cast<quint64>(QDateTime::currentMSecsSinceEpoch());

        QVERIFY(before <= milliseconds && milliseconds <= after);
        // Up to 80000 stamps of another test may run ahead of the clock, a microsecond each.
        QVERIFY(before * 1000 <= stamp && stamp <= after * 1000 + 80000);
        const auto wrapped = [](quint64 value) { return static_cast<qint32>(value / 1000); };
        QVERIFY(wrapped(before) <= seconds && seconds <= wrapped(after));

        QCOMPARE(os.GetTimezoneOffset(true),
                 QDateTime::currentDateTime().offsetFromUtc() * qint64{1000000});
    }

    void everyThreadHasItsLastError()
    {
        IVelaOS& os = VelaOS::Get();
        constexpr std::size_t count = 4;
        std::array<quint32, count> codes{};
        std::atomic<std::size_t> setBy{0};
        inThreads(count, [&](std::size_t i) {
            os.SetLastError(static_cast<quint32>(i) + 5);
            // No call of the system in between, which might leave a code of its own.
            for (++setBy; setBy < count;) {
            }
            codes[i] = os.GetLastError();
        });
        QCOMPARE(codes, (std::array<quint32, count>{5, 6, 7, 8}));
    }

    void staticDestructorsMayCall()
    {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("late-user")});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.readAllStandardOutput().trimmed(), QByteArray("works"));
    }

    void debuggerOutput()
    {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("debugger")});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.readAllStandardOutput(), QByteArray());
#ifdef Q_OS_WIN
        QCOMPARE(process.readAllStandardError(), QByteArray());
#else
        QCOMPARE(process.readAllStandardError(), QByteArray("a \xc3\xa9 \xe2\x82\xac b\n"));
#endif
    }
};

int main(int argc, char* argv[])
{
    if (argc == 2 && std::strcmp(argv[1], "late-user") == 0)
        return runLateUser();
    if (argc == 2 && std::strcmp(argv[1], "debugger") == 0)
        return writeToDebugger();
    QCoreApplication app(argc, argv);
    TestVelaOS test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_velaos.moc"

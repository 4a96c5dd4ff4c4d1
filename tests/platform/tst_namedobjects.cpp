#include <VLBase/platform/namedclaim.h>
#include <VLBase/platform/namedmapping.h>
#include <VLBase/platform/namedmutex.h>
#include <VLBase/platform/openinglock.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>
#ifdef Q_OS_UNIX // only there a program can fork
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace vlbase::platform;
using namespace std::chrono_literals;

namespace {

void writePrivate(const QString& name, QFile::Permissions more = {})
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, 'x'));
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | more));
}

void inThreads(int count, const std::function<void(int)>& work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

/// The system's named objects within one process; two objects of one name conflict just as those
/// of two processes do. What takes processes is tested with the log.
class tst_NamedObjects : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        static int count = 0;
        const auto pid = QCoreApplication::applicationPid();
        m_name = QStringLiteral("vltest-%1-%2").arg(pid).arg(++count).toStdString();
        m_path = QStringLiteral("/dev/shm/%1.%2")
                     .arg(QString::fromStdString(m_name))
                     .arg(QFileInfo(QStringLiteral("/proc/self")).ownerId());
    }
    void cleanup() { QVERIFY2(!QFile::exists(m_path), "something was left behind"); }

    void mapping();
    void mappingWithoutStandardStreams();
    void foreignFiles();
    void mutex();
    void openingLock();
    void claim();
    void claimOfForkedProgram();

private:
    /// Under Wine the host's folder may be seen, which means nothing there.
    static bool hasSharedMemoryFolder() { return QSysInfo::kernelType() == QLatin1String("linux"); }

    std::string m_name;
    QString m_path;
};

void tst_NamedObjects::mapping()
{
    NamedMapping first;
    NamedMapping second;
    QCOMPARE(second.open(m_name), NamedMapping::Opened::Absent);
    QVERIFY(first.create(m_name, 5000));
    QVERIFY(!NamedMapping().create(m_name, 5000));
    QCOMPARE(second.open(m_name), NamedMapping::Opened::Done);
    QVERIFY(second.size() >= 5000 && second.data() != first.data());
    QCOMPARE(int(first.data()[4999]), 0);
    first.data()[4999] = std::byte(77);
    first.close();
    NamedMapping glance;
    QCOMPARE(glance.open(m_name, NamedMapping::Access::Glance), NamedMapping::Opened::Done);
    QVERIFY(int(second.data()[4999]) == 77 && int(glance.data()[4999]) == 77);
    glance.close();
    second = NamedMapping();
    QCOMPARE(first.open(m_name), NamedMapping::Opened::Absent);
}

// What such a process says must not get into the memory of others.
void tst_NamedObjects::mappingWithoutStandardStreams()
{
#ifdef Q_OS_UNIX
    const int aside = dup(STDERR_FILENO);
    close(STDERR_FILENO);
    NamedMapping mapping;
    const bool isMade = mapping.create(m_name, 10);
    const bool isPut = write(STDERR_FILENO, "words", 5) >= 0;
    dup2(aside, STDERR_FILENO);
    close(aside);
    QVERIFY(isMade && !isPut);
#else
    QSKIP("a handle is no small number here");
#endif
}

void tst_NamedObjects::foreignFiles()
{
    // Under Wine the host's folder may be seen, which means nothing there.
    if (QSysInfo::kernelType() != QLatin1String("linux"))
        QSKIP("shared memory is no file here");
    NamedMapping holder;
    writePrivate(m_path); // what a killed process left: no holder, but a name
    QCOMPARE(holder.open(m_name, NamedMapping::Access::Glance), NamedMapping::Opened::Absent);
    QVERIFY(QFile::exists(m_path));
    QCOMPARE(holder.open(m_name), NamedMapping::Opened::Absent);
    QVERIFY(!QFile::exists(m_path) && holder.create(m_name, 10));
    QCOMPARE(int(holder.data()[0]), 0);
    holder.close();

    const QTemporaryDir folder;
    const QString target = folder.filePath(QStringLiteral("target"));
    const auto isRefused = [this](bool isHeld) {
        NamedMapping mapping;
        QCOMPARE(mapping.open(m_name), NamedMapping::Opened::Refused);
        QCOMPARE(mapping.open(m_name, NamedMapping::Access::Glance), NamedMapping::Opened::Refused);
        QVERIFY(!mapping.create(m_name, 10) && !NamedMutex().open(m_name));
        if (!isHeld)
            QVERIFY(!NamedClaim().take(m_name) && !OpeningLock(m_name, 10ms).isHeld());
        QVERIFY(QFileInfo::exists(m_path));
    };
    writePrivate(target);
    QVERIFY(QFile::link(target, m_path));
    isRefused(false);
    QCOMPARE(QFileInfo(target).size(), 5000);
    QVERIFY(QFile::remove(m_path) && QDir().mkdir(m_path));
    isRefused(false);
    QVERIFY(QDir().rmdir(m_path));
    writePrivate(m_path, QFile::ReadOther);
    isRefused(false);
    QVERIFY(QFile::remove(m_path));
    QVERIFY(holder.create(m_name, 4096) && !NamedMutex().open(m_name));
    std::memset(holder.data(), 0x5A, 4096); // memory, but no mutex of ours
    QVERIFY(!NamedMutex().open(m_name) && !NamedMutex().create(m_name));
    QVERIFY(!NamedMutex::isHeld(m_name) && int(holder.data()[40]) == 0x5A);
    QVERIFY(QFile::resize(m_path, 0));
    isRefused(true);
}

void tst_NamedObjects::mutex()
{
    NamedMutex first;
    NamedMutex second;
    QVERIFY(!second.open(m_name));
    QCOMPARE(second.lock(1ms), LockResult::Failed);
    QVERIFY(!second.unlock());
    QVERIFY(first.create(m_name) && second.open(m_name));
    QCOMPARE(first.lock(0ms), LockResult::Owned);
    QCOMPARE(first.lock(0ms), LockResult::Owned);
    QVERIFY(NamedMutex::isHeld(m_name));
    inThreads(1, [&](int) {
        QElapsedTimer time;
        time.start();
        QCOMPARE(second.lock(100ms), LockResult::TimedOut);
        QVERIFY(time.elapsed() >= 95 && time.elapsed() < 5000);
        QVERIFY(!second.unlock() && !first.unlock() && !first.isHeldByThisThread());
    });
    QVERIFY(first.unlock() && NamedMutex::isHeld(m_name));
    QVERIFY(first.unlock() && !NamedMutex::isHeld(m_name) && !first.unlock());

    // Each step is read and then written: the mutex is what makes the sum right.
    std::atomic<int> counter{0};
    inThreads(4, [&](int number) {
        NamedMutex& mutex = number % 2 ? first : second;
        for (int i = 0; i < 5000; ++i) {
            mutex.lock(10s);
            counter.store(counter.load() + 1);
            mutex.unlock();
        }
    });
    QCOMPARE(counter.load(), 20000);

    inThreads(1, [&](int) { first.lock(1s); }); // ends while it holds
    QCOMPARE(second.lock(1s), LockResult::OwnedAfterDeath);
    QVERIFY(second.unlock());
    QCOMPARE(first.lock(1s), LockResult::Owned);
    QVERIFY(first.unlock());
    {
        NamedMutex third; // goes while it is locked by its own thread, which then has let go
        QVERIFY(third.open(m_name));
        third.lock(1s);
        third.lock(1s);
    }
    inThreads(1, [&](int) {
        QCOMPARE(second.lock(1s), LockResult::Owned);
        QVERIFY(second.unlock());
    });
}

void tst_NamedObjects::openingLock()
{
    std::atomic<int> inside{0};
    std::atomic<int> turns{0};
    inThreads(4, [&](int) {
        for (int turn = 0; turn < 200; ++turn) {
            const OpeningLock lock(m_name, 20s);
            if (lock.isHeld() && inside++ == 0)
                ++turns;
            --inside;
        }
    });
    QCOMPARE(turns.load(), 800);

    const OpeningLock held(m_name);
    inThreads(1, [this](int) {
        QElapsedTimer time;
        time.start();
        QVERIFY(!OpeningLock(m_name, 50ms).isHeld());
        QVERIFY(time.elapsed() >= 45 && time.elapsed() < 5000);
    });
}

void tst_NamedObjects::claim()
{
    NamedClaim first;
    NamedClaim second;
    QVERIFY(!NamedClaim::isTaken(m_name) && first.take(m_name));
    QVERIFY(NamedClaim::isTaken(m_name) && !second.take(m_name) && !second.isHeld());
    std::thread([moved = std::move(first)]() mutable { QVERIFY(moved.isHeld()); }).join();
    QVERIFY(second.take(m_name));
    second.release();
    QVERIFY(!NamedClaim::isTaken(m_name));

    // Many want it at the same time: each round exactly one gets it.
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> winners{0};
        std::atomic<int> arrived{0};
        NamedClaim claims[4];
        inThreads(4, [&](int number) {
            for (++arrived; arrived < 4;)
                std::this_thread::yield();
            winners += claims[number].take(m_name) ? 1 : 0;
        });
        QCOMPARE(winners.load(), 1);
    }
}

void tst_NamedObjects::claimOfForkedProgram()
{
#ifdef Q_OS_UNIX
    int ends[2] = {};
    QCOMPARE(pipe(ends), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        NamedClaim claim;
        const bool isTaken = claim.take(m_name);
        if (fork() == 0) {
            // Only a child that runs has closed what it must not keep.
            const pid_t self = getpid();
            static_cast<void>(!write(ends[1], &self, sizeof self));
            alarm(60);
            pause();
            _exit(0);
        }
        _exit(isTaken ? 0 : 1); // as if it were killed: the claim is not released
    }
    pid_t child = 0;
    QCOMPARE(read(ends[0], &child, sizeof child), ssize_t(sizeof child));
    int status = 0;
    waitpid(holder, &status, 0);
    NamedClaim successor;
    const bool succeeds = successor.take(m_name);
    kill(child, SIGKILL);
    close(ends[0]);
    close(ends[1]);
    QCOMPARE(status, 0);
    QVERIFY(succeeds);
#else
    QSKIP("programs do not fork here");
#endif
}

QTEST_GUILESS_MAIN(tst_NamedObjects)
#include "tst_namedobjects.moc"

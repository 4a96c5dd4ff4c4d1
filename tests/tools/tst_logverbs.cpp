// The verbs of the log as programs: owners, senders and viewers in processes of their own.

#include "tests/support/program.h"

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/viewerclaim.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>
#include <vector>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

constexpr int limitMs = 60'000;

/// A verb of the log in a process of its own, in the log of this test.
class Verb
{
public:
    Verb(const QString& instance, QStringList arguments)
    {
        arguments.prepend(QStringLiteral("log"));
        // Before a "--" that may be among the arguments.
        arguments.insert(2, QStringLiteral("--instance"));
        arguments.insert(3, instance);
        m_arguments = arguments;
    }
    /// Asks first: a killed program leaves the log's named objects to the next one that looks.
    ~Verb()
    {
        m_process.closeWriteChannel();
        m_process.terminate();
        awaitEnd(m_process, 3000);
        m_process.kill();
        awaitEnd(m_process, limitMs);
    }

    QProcess& process() { return m_process; }
    void start() { startVlbase(m_process, m_arguments); }
    void write(const QByteArray& text) { m_process.write(text); }

    /// Waits until the program has said this on standard error.
    bool says(const QByteArray& text)
    {
        const auto isSaid = [&] {
            m_errors += m_process.readAllStandardError();
            return m_errors.contains(text);
        };
        return QTest::qWaitFor(
                   [&] { return isSaid() || m_process.state() == QProcess::NotRunning; },
                   limitMs) &&
               isSaid();
    }

    /// Waits until the program has written something to standard output.
    bool shows()
    {
        return QTest::qWaitFor([this] { return m_process.bytesAvailable() > 0; }, limitMs);
    }

    /// Waits for the end.
    /// \return the exit status; -1 when it was killed or did not end.
    int finish()
    {
        m_process.closeWriteChannel();
        awaitEnd(m_process, limitMs);
        m_errors += m_process.readAllStandardError();
        return m_process.exitStatus() == QProcess::NormalExit &&
                       m_process.state() == QProcess::NotRunning
                   ? m_process.exitCode()
                   : -1;
    }

    QByteArray output() { return m_process.readAllStandardOutput(); }
    const QByteArray& errors() const { return m_errors; }

private:
    QProcess m_process;
    QStringList m_arguments;
    QByteArray m_errors;
};

QByteArray content(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The event's first field of each line with a number.
QByteArrayList texts(const QByteArray& file)
{
    QByteArrayList result;
    for (const QByteArray& line : file.split('\n')) {
        const QByteArrayList fields = line.split('\t');
        if (fields.size() > 6 && fields[0] != "------")
            result << fields[6];
    }
    return result;
}

QByteArrayList numbers(const QByteArray& prefix, int count)
{
    QByteArrayList list;
    for (int i = 0; i < count; ++i)
        list << prefix + QByteArray::number(i);
    return list;
}

} // namespace

class LogVerbsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everyLineArrivesEverywhere();
    void everyLineOnceThroughKilledOwners();
    void rotatesUnderLoad();
    void fullDiskLosesNothing();
    void viewerOutlivesOwners();
    void tooLongLines();
    void statuses();
    void littleSharedMemory();
    void signalsEndOwnerAndViewer();

private:
    Verb& start(const char* words, const QStringList& more = {});
    Verb& startOwner(const char* options = "");
    /// Sends lines through a pipe. \return what the program said on standard error
    QByteArray sendLines(const QByteArray& lines);
    QString file() const { return m_directory->filePath(QStringLiteral("log")); }

    QString m_instance;
    // In this order: who uses the files ends before they are removed.
    std::unique_ptr<QTemporaryDir> m_directory;
    std::vector<std::unique_ptr<Verb>> m_verbs;
};

void LogVerbsTest::init()
{
    static int count = 0;
    m_instance = QStringLiteral("verbs-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
    m_directory = std::make_unique<QTemporaryDir>();
}

/// What killed programs left in memory goes with the last one that opens it.
void LogVerbsTest::cleanup()
{
    m_verbs.clear();
    QVERIFY(setLogInstance(m_instance));
    const vlbase::logging::LogOwner sweeper(4096);
    vlbase::logging::ViewerClaim().take();
}

Verb& LogVerbsTest::start(const char* words, const QStringList& more)
{
    m_verbs.push_back(
        std::make_unique<Verb>(m_instance, QString::fromUtf8(words).split(u' ') + more));
    m_verbs.back()->start();
    return *m_verbs.back();
}

/// Started when it returns; ends with its input.
Verb& LogVerbsTest::startOwner(const char* options)
{
    Verb& owner = start("own --end-with-input",
                        QStringList{QStringLiteral("--file"), file()} +
                            QString::fromLatin1(options).split(u' ', Qt::SkipEmptyParts));
    if (!owner.says("writing to "))
        qWarning("no owner (%s, status %d): %s", qPrintable(owner.process().errorString()),
                 owner.process().exitCode(), owner.errors().constData());
    return owner;
}

QByteArray LogVerbsTest::sendLines(const QByteArray& lines)
{
    Verb& pipe = start("send event -");
    pipe.write(lines);
    return pipe.finish() == 0 ? pipe.errors() : "failed: " + pipe.errors();
}

void LogVerbsTest::everyLineArrivesEverywhere()
{
    Verb& owner = startOwner();
    Verb& first = start("tail --json --count 5006");
    QVERIFY(first.says("showing the log from"));
    Verb& second = start("tail --json --count 5006 --summary");
    QVERIFY(second.says("showing the log from "));
    QCOMPARE(start("send WARNING --module M\u00E4st --",
                   {QStringLiteral("-40 dBm"), QStringLiteral("\u00B0C \U0001F4E1")})
                 .finish(),
             0);
    QCOMPARE(sendLines(QByteArrayLiteral("dos\r\n\nesc\x1b[2J\nnul\0nul\n") +
                       numbers("n", 5000).join('\n') + "\nlast \xC3"),
             QByteArray());
    QCOMPARE(first.finish(), 0);
    QCOMPARE(second.finish(), 0);
    QVERIFY2(second.errors().contains("5006 lines shown, 0 lost"), second.errors().constData());
    QCOMPARE(owner.finish(), 0);
    QVERIFY2(owner.errors().contains("5006 lines written, 0 lost"), owner.errors().constData());

    const QByteArrayList expected =
        QByteArrayList{"-40 dBm", "dos", "", "esc\u241B[2J", "nul\u2400nul"} + numbers("n", 5000) +
        QByteArrayList{"last \uFFFD"};
    QCOMPARE(texts(content(file())), expected);
    QVERIFY(
        content(file()).contains("\tM\u00E4st\tWarning\t-40 dBm\t\u00B0C \xF0\x9F\x93\xA1\t\n"));
    const QByteArray shown = first.output();
    QCOMPARE(second.output(), shown);
    const QByteArrayList objects = shown.split('\n');
    QCOMPARE(objects.size(), expected.size() + 1);
    for (int at = 0; at < expected.size(); ++at) {
        const QJsonObject object = QJsonDocument::fromJson(objects[at]).object();
        QCOMPARE(object[u"index"].toInt(), 100000 + at);
        QCOMPARE(object[u"fields"][0].toString().toUtf8(), expected[at]);
    }
}

void LogVerbsTest::everyLineOnceThroughKilledOwners()
{
    constexpr int count = 60000;
    Verb* pipes[] = {&start("send event --wait -"), &start("send event --wait -")};
    for (Verb* pipe : pipes)
        QVERIFY(pipe->says("waiting for"));
    Verb* owner = &startOwner("--buffer-size 64K");
    for (int i : {0, 1}) {
        pipes[i]->write(numbers(i == 0 ? "a" : "b", count).join('\n'));
        pipes[i]->process().closeWriteChannel();
    }
    for (int kill = 0; kill < 3; ++kill) {
        const qint64 size = QFile(file()).size();
        QElapsedTimer time;
        time.start();
        while (QFile(file()).size() < size + 300'000 && time.elapsed() < limitMs) {
            for (Verb* pipe : pipes)
                pipe->process().waitForBytesWritten(1);
            QTest::qWait(1);
        }
        owner->process().kill();
        QVERIFY(awaitEnd(owner->process(), limitMs));
        QFile torn(file());
        QVERIFY(torn.open(QIODevice::Append));
        torn.write("9999"); // As if the kill had come in the middle of a write.
        torn.close();
        owner = &startOwner();
        QVERIFY(owner->says("going on with the log"));
    }
    for (Verb* pipe : pipes)
        QCOMPARE(pipe->finish(), 0);
    QCOMPARE(owner->finish(), 0);
    const QByteArray written = content(file());
    QVERIFY2(!written.contains(" lost\t"), "no line is missing");
    QByteArrayList sorted = texts(written); // each pipe's lines in their own order
    std::stable_partition(sorted.begin(), sorted.end(),
                          [](const QByteArray& text) { return text.startsWith('a'); });
    QVERIFY(sorted == numbers("a", count) + numbers("b", count));
}

/// The live buffer holds less than comes between two looks: viewers see each line all the same.
void LogVerbsTest::rotatesUnderLoad()
{
    const QByteArrayList expected = QByteArrayList{"mark"} + numbers("n", 49'999);
    Verb& owner = startOwner("--buffer-size 8K --rotate 64K --keep 500");
    Verb* viewers[] = {&start("tail --json --summary --count 50000"), nullptr};
    QVERIFY(viewers[0]->says("showing the log from"));
    viewers[1] = &start("tail --json --summary --count 50000");
    QVERIFY(viewers[1]->says("showing the log from"));
    QCOMPARE(start("send event mark").finish(), 0);
    QVERIFY(viewers[0]->shows()); // what it misses now is a gap
    QCOMPARE(sendLines(numbers("n", 49'999).join('\n')), QByteArray());
    for (Verb* viewer : viewers) {
        QCOMPARE(viewer->finish(), 0);
        QVERIFY2(viewer->errors().contains("50000 lines shown, 0 lost"), viewer->errors());
        const QByteArrayList shown = viewer->output().split('\n');
        QCOMPARE(shown.size(), expected.size() + 1);
        for (int i = 0; i < expected.size(); ++i)
            QVERIFY2(shown[i].contains('"' + expected[i] + '"'), shown[i].constData());
    }
    QCOMPARE(owner.finish(), 0);

    QByteArray all;
    const qsizetype files = QDir(m_directory->path()).entryList(QDir::Files).size();
    QVERIFY(files > 20);
    for (qsizetype number = files - 1; number >= 0; --number) {
        const QByteArray part =
            content(number == 0 ? file() : QStringLiteral("%1.%2").arg(file()).arg(number));
        QVERIFY(part.endsWith('\n') && part.size() <= 64 * 1024);
        all += part;
    }
    QVERIFY(texts(all) == expected);
}

void LogVerbsTest::fullDiskLosesNothing()
{
#ifdef Q_OS_LINUX
    constexpr int count = 20000;
    // The log's memory is not on that disk: it is made before the limit is low.
    Verb& keeper = startOwner();
    Verb& attached = start("send event -");
    attached.write("mark\n");
    QTRY_VERIFY_WITH_TIMEOUT(content(file()).contains("\tmark\t"), limitMs);
    QCOMPARE(keeper.finish(), 0);
    Verb owner(m_instance, {QStringLiteral("own"), QStringLiteral("--end-with-input"),
                            QStringLiteral("--file"), file()});
    owner.process().setChildProcessModifier([] {
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 100'001;
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    owner.start();
    QVERIFY2(owner.says("writing to "), owner.errors().constData());

    QCOMPARE(sendLines(numbers("n", count).join('\n')), QByteArray());
    QVERIFY(owner.says("cannot write the file: "));
    QCOMPARE(QFile(file()).size(), 100'001);
    rlimit limit = {};
    const auto pid = static_cast<pid_t>(owner.process().processId());
    QCOMPARE(prlimit(pid, RLIMIT_FSIZE, nullptr, &limit), 0);
    limit.rlim_cur = limit.rlim_max;
    QCOMPARE(prlimit(pid, RLIMIT_FSIZE, &limit, nullptr), 0);
    QVERIFY(owner.says("is being written again"));
    QCOMPARE(owner.finish(), 0);
    QCOMPARE(owner.errors().count("cannot write"), 1);
    QVERIFY(texts(content(file())) == QByteArrayList{"mark"} + numbers("n", count));
#else
    QSKIP("no limit of a file's size to imitate a full disk with");
#endif
}

void LogVerbsTest::viewerOutlivesOwners()
{
    Verb& viewer = start("tail --count 2 --level error,admin");
    QVERIFY(viewer.says("the log has no owner"));
    for (const char* send : {"send Error one", "send Error two"}) {
        Verb& owner = startOwner();
        QVERIFY(viewer.says("showing the log from"));
        QCOMPARE(start("send trace no").finish(), 0);
        QCOMPARE(start(send).finish(), 0);
        QCOMPARE(owner.finish(), 0);
        if (qstrcmp(send, "send Error one") == 0)
            QVERIFY(viewer.says("owner has ended"));
    }
    QCOMPARE(viewer.finish(), 0);
    const QByteArray shown = viewer.output();
    QCOMPARE(shown.count('\n'), 2);
    QVERIFY(shown.contains("  one") && shown.contains("  two") && !shown.contains("lost"));
}

void LogVerbsTest::tooLongLines()
{
    Verb& owner = startOwner("--buffer-size 8K");
    Verb& one = start("send event", {QString(9000, u'x')});
    QCOMPARE(one.finish(), 1);
    QVERIFY(one.errors().contains("longer than this log can hold"));
    // Each of the last ones takes three bytes in the log.
    const QByteArray told =
        sendLines("short\n" + QByteArray(100'000, 'y') + "\nafter\n" + QByteArray(5000, '\xFF') +
                  '\n' + QByteArray(5000, '\0') + "\nlast\n");
    for (const char* cut : {"line 2 is longer", "line 4 is longer", "line 5 is longer"})
        QVERIFY2(told.contains(cut), told.constData());
    QCOMPARE(owner.finish(), 0);
    const QByteArrayList written = texts(content(file()));
    QCOMPARE(written.size(), 6);
    QCOMPARE(written[5], "last");
    QVERIFY(written[1].size() > 7000 && written[1].count('y') == written[1].size());
}

void LogVerbsTest::statuses()
{
    struct Call
    {
        const char* words;
        int status;
        const char* says;
    };
    const auto check = [this](const Call& call) {
        Verb& verb = start(call.words);
        const int status = verb.finish();
        QVERIFY2(status == call.status && verb.errors().contains(call.says) &&
                     verb.errors().isEmpty() == (*call.says == '\0'),
                 call.words + QByteArray(": ") + QByteArray::number(status) + verb.errors());
    };
#ifdef Q_OS_WIN
    constexpr const char* badFile = "own --file C:\\no|name";
#else
    constexpr const char* badFile = "own --file /dev/null/x";
#endif
    for (const Call& call : {Call{"send event x", 3, "has no owner"},
                             {"status", 3, "nobody takes part"},
                             {"sned event x", 2, "Did you mean 'send'?"},
                             {"tail --jsn", 2, "Did you mean '--json'?"},
                             {"send warn x", 2, "unknown level 'warn'"},
                             {"tail --level evnt", 2, "Did you mean 'event'?"},
                             {"own --rotate 12Q", 2, "'12Q'"},
                             {"own --rotate 5", 2, "not at least 1 KiB"},
                             {"own --reserve 2G", 2, "from 2 MiB to 1 GiB"},
                             {"own --buffer-size 1", 2, "4 KiB"},
                             {"tail --grep", 2, "--grep needs a value"},
                             {"tail --level=", 2, "expected a value"},
                             {"tail --filter (a", 2, "column 3: expected ')'"},
                             {"tail --file nix", 2, "cannot read 'nix'"},
                             {"tail --json=x", 2, "--json takes no value"},
                             {"send event a b c d", 2, "at most two fields"},
                             {badFile, 1, "cannot open"}})
        check(call);
    QFile note(file());
    QVERIFY(note.open(QIODevice::WriteOnly));
    note.write("milk, bread");
    note.close();
    Verb& careful = start("own --file", {file()});
    QCOMPARE(careful.finish(), 2);
    QVERIFY(careful.errors().contains("--append-to-any"));
    QCOMPARE(content(file()), "milk, bread");

    Verb& owner = startOwner("--no-data-blocks --append-to-any");
    check({"own", 4, "has an owner already"});
    check({"status --json", 0, ""});
    check({"send data T x", 1, "takes no data blocks"});
    QCOMPARE(start("send event x --module", {QStringLiteral("a\tb")}).finish(), 0);
    QCOMPARE(owner.finish(), 0);
    QVERIFY(content(file()).startsWith("milk, bread\n------\t"));
    QVERIFY(content(file()).contains("\ta b\tEvent\tx\t"));
}

/// Each owner has a view of the file system of its own, with a shared memory as containers have.
void LogVerbsTest::littleSharedMemory()
{
#ifdef Q_OS_LINUX
    struct Case
    {
        const char* mount;
        const char* says;
    };
    for (const Case& memory : {Case{"size=16m", "the reserve is 4 MiB instead of 32 MiB"},
                               {"size=8m", "no room for a reserve"},
                               {"size=64k", "cannot be opened: No space left on device (it needs "
                                            "2 MiB of shared memory, of 64 KiB there are"},
                               {"ro", "cannot be opened: Read-only file system"}}) {
        m_verbs.push_back(std::make_unique<Verb>(
            m_instance, QStringList{QStringLiteral("own"), QStringLiteral("--file"),
                                    file() + QString::number(m_verbs.size())}));
        Verb& owner = *m_verbs.back();
        owner.process().setChildProcessModifier([options = memory.mount] {
            const unsigned long flags = *options == 'r' ? MS_RDONLY : 0;
            if (unshare(CLONE_NEWNS) != 0 ||
                mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
                mount("tmpfs", "/dev/shm", "tmpfs", flags, flags ? nullptr : options) != 0)
                _exit(77);
        });
        owner.start();
        const bool isTold = owner.says(memory.says);
        if (owner.process().exitCode() == 77)
            QSKIP("only root may mount");
        QVERIFY2(isTold, owner.errors().constData());
    }
#else
    QSKIP("shared memory has no size of its own here");
#endif
}

void LogVerbsTest::signalsEndOwnerAndViewer()
{
#ifdef Q_OS_LINUX
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        Verb& owner = start("own --file", {file()});
        QVERIFY(owner.says("writing to "));
        Verb& viewer = start("tail");
        QVERIFY(viewer.says("showing the log"));
        QCOMPARE(start("send event last").finish(), 0);
        for (Verb* verb : {&viewer, &owner}) {
            // A terminal that closes tells it several times, until the last moment.
            do
                QCOMPARE(kill(static_cast<pid_t>(verb->process().processId()), signal), 0);
            while (signal != SIGINT && !verb->process().waitForFinished(0));
            QCOMPARE(verb->finish(), 0);
        }
        QVERIFY(viewer.output().contains("  last\n"));
        QVERIFY(content(file()).endsWith("\tlast\t\t\n"));
    }

    // As nohup and the background of a script start it, and without any standard stream.
    m_verbs.push_back(std::make_unique<Verb>(
        m_instance, QStringList{QStringLiteral("own"), QStringLiteral("--file"), file()}));
    Verb& detached = *m_verbs.back();
    detached.process().setChildProcessModifier([] {
        for (const int ignored : {SIGINT, SIGHUP})
            signal(ignored, SIG_IGN);
        for (const int stream : {0, 1, 2})
            close(stream);
    });
    detached.start();
    QVERIFY(QTest::qWaitFor([this] { return start("status").finish() == 0; }, limitMs));
    const auto processId = static_cast<pid_t>(detached.process().processId());
    for (const int ignored : {SIGINT, SIGHUP})
        kill(processId, ignored);
    QCOMPARE(start("send event still").finish(), 0);
    // Its ticks of work so far: not those of a loop that reads its own messages.
    const QByteArray stat = content(QStringLiteral("/proc/%1/stat").arg(processId));
    QVERIFY(stat.mid(stat.lastIndexOf(')')).split(' ')[12].toInt() < 30);
    kill(processId, SIGTERM);
    QCOMPARE(detached.finish(), 0);
    QVERIFY(content(file()).endsWith("\tstill\t\t\n"));

    m_verbs.push_back(std::make_unique<Verb>(
        m_instance, QStringList{QStringLiteral("own"), QStringLiteral("--end-with-input"),
                                QStringLiteral("--file"), file()}));
    Verb& deaf = *m_verbs.back();
    deaf.process().setChildProcessModifier([] { close(STDIN_FILENO); });
    deaf.start();
    QCOMPARE(deaf.finish(), 1);
    QVERIFY(deaf.errors().contains("standard input cannot be read"));
#else
    QSKIP("no signals");
#endif
}

QTEST_GUILESS_MAIN(LogVerbsTest)

#include "tst_logverbs.moc"

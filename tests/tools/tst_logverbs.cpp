// The verbs of the log as programs: owners, senders and viewers in processes of their own.

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logviewerclaim.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
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
        m_process.setProgram(QCoreApplication::applicationDirPath() + QStringLiteral("/vlbase"));
        m_process.setArguments(arguments);
    }
    /// Asks first: a killed program leaves the log's named objects to the next one that looks.
    ~Verb()
    {
        m_process.closeWriteChannel();
        m_process.terminate();
        m_process.waitForFinished(3000);
        m_process.kill();
        m_process.waitForFinished(limitMs);
    }

    QProcess& process() { return m_process; }
    void start() { m_process.start(); }
    void write(const QByteArray& text) { m_process.write(text); }

    /// Waits until the program has said this on standard error.
    bool says(const QByteArray& text)
    {
        m_process.setReadChannel(QProcess::StandardError);
        QElapsedTimer time;
        time.start();
        while (!m_errors.contains(text) && time.elapsed() < limitMs) {
            if (m_process.bytesAvailable() == 0 && !m_process.waitForReadyRead(1000) &&
                m_process.state() == QProcess::NotRunning)
                break;
            m_errors += m_process.readAllStandardError();
        }
        return m_errors.contains(text);
    }

    /// Waits for the end.
    /// \return the exit status; -1 when it was killed or did not end.
    int finish()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished(limitMs);
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
    void viewerGoesOnFromTheFile();
    void fullDiskLosesNothing();
    void viewerOutlivesOwners();
    void waitsForAnOwner();
    void tooLongLines();
    void statuses_data();
    void statuses();
#ifdef Q_OS_LINUX
    void signalsEndOwnerAndViewer();
#endif

private:
    Verb& start(QStringList arguments);
    Verb& startOwner(const QStringList& options = {});
    QString file() const
    {
        return m_directory->filePath(QStringLiteral("log"));
    }

    QString m_instance;
    // In this order: who uses the files ends before they are removed.
    std::unique_ptr<QTemporaryDir> m_directory;
    std::vector<std::unique_ptr<Verb>> m_verbs;
};

void LogVerbsTest::init()
{
    static int count = 0;
    m_instance = QStringLiteral("verbs-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
    m_verbs.clear();
    m_directory = std::make_unique<QTemporaryDir>();
}

/// What killed programs left in memory goes with the last one that opens it.
void LogVerbsTest::cleanup()
{
    m_verbs.clear();
    QVERIFY(setLogInstance(m_instance));
    const vlbase::logging::LogOwner sweeper(4096);
    vlbase::logging::LogViewerClaim().take();
}

Verb& LogVerbsTest::start(QStringList arguments)
{
    m_verbs.push_back(std::make_unique<Verb>(m_instance, std::move(arguments)));
    m_verbs.back()->start();
    return *m_verbs.back();
}

/// Started when it returns; ends with its input.
Verb& LogVerbsTest::startOwner(const QStringList& options)
{
    Verb& owner = start(QStringList{QStringLiteral("own"), QStringLiteral("--end-with-input"),
                                    QStringLiteral("--file"), file()} +
                        options);
    if (!owner.says("writing to "))
        qWarning("no owner: %s", owner.errors().constData());
    return owner;
}

void LogVerbsTest::everyLineArrivesEverywhere()
{
    Verb& owner = startOwner();
    Verb& first = start({QStringLiteral("tail"), QStringLiteral("--json"),
                         QStringLiteral("--count"), QStringLiteral("5006")});
    QVERIFY(first.says("showing the log live"));
    Verb& second =
        start({QStringLiteral("tail"), QStringLiteral("--json"), QStringLiteral("--count"),
               QStringLiteral("5006"), QStringLiteral("--summary")});
    QVERIFY(second.says("showing the log from "));

    Verb& one =
        start({QStringLiteral("send"), QStringLiteral("WARNING"), QStringLiteral("--module"),
               QStringLiteral("M\u00E4st"), QStringLiteral("--"), QStringLiteral("-40 dBm"),
               QStringLiteral("\u00B0C \U0001F4E1")});
    QCOMPARE(one.finish(), 0);
    Verb& pipe = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("-")});
    pipe.write(QByteArrayLiteral("dos\r\n\nesc\x1b[2J\nnul\0nul\n") +
               numbers("n", 5000).join('\n') + "\nlast \xC3");
    QCOMPARE(pipe.finish(), 0);

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
    int at = 0;
    for (const QByteArray& line : shown.split('\n')) {
        if (line.isEmpty())
            continue;
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        QCOMPARE(object[u"index"].toInt(), 100000 + at);
        QCOMPARE(object[u"fields"][0].toString().toUtf8(), expected[at]);
        ++at;
    }
    QCOMPARE(at, 5006);
}

void LogVerbsTest::everyLineOnceThroughKilledOwners()
{
    constexpr int count = 60000;
    Verb* owner = &startOwner({QStringLiteral("--buffer-size"), QStringLiteral("64K")});
    std::vector<Verb*> pipes;
    for (const char* name : {"a", "b"}) {
        pipes.push_back(&start({QStringLiteral("send"), QStringLiteral("event"),
                                QStringLiteral("--wait"), QStringLiteral("-")}));
        pipes.back()->write(numbers(name, count).join('\n'));
        pipes.back()->process().closeWriteChannel();
    }
    for (int kill = 0; kill < 3; ++kill) {
        const qint64 size = content(file()).size();
        QElapsedTimer time;
        time.start();
        while (QFile(file()).size() < size + 300'000 && time.elapsed() < limitMs) {
            for (Verb* pipe : pipes)
                pipe->process().waitForBytesWritten(1);
            QTest::qWait(1);
        }
        owner->process().kill();
        QVERIFY(owner->process().waitForFinished(limitMs));
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
    for (const char* name : {"a", "b"}) {
        QByteArrayList mine = texts(written);
        mine.erase(std::remove_if(mine.begin(), mine.end(),
                                  [&](const QByteArray& text) { return !text.startsWith(name); }),
                   mine.end());
        QVERIFY(mine == numbers(name, count));
    }
    QCOMPARE(texts(written).size(), 2 * count);
}

void LogVerbsTest::rotatesUnderLoad()
{
    constexpr int count = 30000;
    Verb& owner = startOwner({QStringLiteral("--rotate"), QStringLiteral("64K"),
                              QStringLiteral("--keep"), QStringLiteral("500")});
    // It stays, so that the other one has to follow the file.
    Verb& live = start({QStringLiteral("tail")});
    QVERIFY(live.says("showing the log live"));
    Verb& follower = start({QStringLiteral("tail"), QStringLiteral("--json"),
                            QStringLiteral("--count"), QString::number(count + 1)});
    QVERIFY(follower.says("showing the log from"));
    Verb& mark = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("mark")});
    QCOMPARE(mark.finish(), 0);
    Verb& pipe = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("-")});
    pipe.write(numbers("n", count).join('\n'));
    QCOMPARE(pipe.finish(), 0);
    QCOMPARE(follower.finish(), 0);
    QCOMPARE(owner.finish(), 0);

    QByteArray all;
    const QDir directory(m_directory->path());
    const qsizetype files = directory.entryList(QDir::Files).size();
    QVERIFY(files > 20);
    for (qsizetype number = files - 1; number >= 0; --number) {
        const QByteArray part =
            content(number == 0 ? file() : QStringLiteral("%1.%2").arg(file()).arg(number));
        QVERIFY(part.endsWith('\n') && part.size() <= 64 * 1024);
        all += part;
    }
    QVERIFY(texts(all) == QByteArrayList{"mark"} + numbers("n", count));
    QCOMPARE(follower.output().count('\n'), count + 1);
}

/// The live buffer holds less than comes between two looks of its viewer.
void LogVerbsTest::viewerGoesOnFromTheFile()
{
    constexpr int count = 50'000;
    Verb& owner = startOwner({QStringLiteral("--buffer-size"), QStringLiteral("8K"),
                              QStringLiteral("--rotate"), QStringLiteral("1M"),
                              QStringLiteral("--keep"), QStringLiteral("500")});
    Verb& viewer =
        start({QStringLiteral("tail"), QStringLiteral("--json"), QStringLiteral("--summary"),
               QStringLiteral("--count"), QString::number(count)});
    QVERIFY(viewer.says("showing the log live"));
    Verb& pipe = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("-")});
    pipe.write(numbers("n", count).join('\n'));
    QCOMPARE(pipe.finish(), 0);
    QCOMPARE(viewer.finish(), 0);
    QVERIFY2(viewer.errors().contains("the live buffer ran over; going on from "),
             viewer.errors().constData());
    QVERIFY2(viewer.errors().contains("50000 lines shown, 0 lost"), viewer.errors().constData());
    const QByteArrayList shown = viewer.output().split('\n');
    QCOMPARE(shown.size(), count + 1);
    for (int i = 0; i < count; ++i)
        QVERIFY2(shown[i].contains("\"n" + QByteArray::number(i) + '"'), shown[i].constData());
    QCOMPARE(owner.finish(), 0);
}

void LogVerbsTest::fullDiskLosesNothing()
{
#ifdef Q_OS_LINUX
    constexpr int count = 20000;
    Verb owner(m_instance, {QStringLiteral("own"), QStringLiteral("--end-with-input"),
                            QStringLiteral("--file"), file()});
    owner.process().setChildProcessModifier([] {
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 100'001;
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    // The log's memory is not on that disk: it is made before the limit is low.
    Verb keeper(m_instance, {QStringLiteral("own"), QStringLiteral("--end-with-input"),
                             QStringLiteral("--file"), file()});
    keeper.start();
    QVERIFY(keeper.says("writing to "));
    Verb& viewer = start({QStringLiteral("tail"), QStringLiteral("--quiet"),
                          QStringLiteral("--seconds"), QStringLiteral("1000")});
    Verb& mark = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("mark")});
    QCOMPARE(mark.finish(), 0);
    viewer.process().setReadChannel(QProcess::StandardOutput);
    QVERIFY(viewer.process().waitForReadyRead(limitMs));
    QCOMPARE(keeper.finish(), 0);
    owner.start();
    QVERIFY2(owner.says("writing to "), owner.errors().constData());

    Verb& pipe = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("-")});
    pipe.write(numbers("n", count).join('\n'));
    QCOMPARE(pipe.finish(), 0);
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
    Verb& viewer = start({QStringLiteral("tail"), QStringLiteral("--count"), QStringLiteral("2"),
                          QStringLiteral("--level"), QStringLiteral("error,admin")});
    QVERIFY(viewer.says("the log has no owner"));
    for (const char* text : {"one", "two"}) {
        Verb& owner = startOwner();
        QVERIFY(viewer.says("showing the log live"));
        Verb& ignored =
            start({QStringLiteral("send"), QStringLiteral("trace"), QStringLiteral("no")});
        QCOMPARE(ignored.finish(), 0);
        Verb& send =
            start({QStringLiteral("send"), QStringLiteral("Error"), QString::fromLatin1(text)});
        QCOMPARE(send.finish(), 0);
        QCOMPARE(owner.finish(), 0);
        if (*text == 'o')
            QVERIFY(viewer.says("owner has ended"));
    }
    QCOMPARE(viewer.finish(), 0);
    const QByteArray shown = viewer.output();
    QCOMPARE(shown.count('\n'), 2);
    QVERIFY(shown.contains("  one") && shown.contains("  two") && !shown.contains("lost"));
}

void LogVerbsTest::waitsForAnOwner()
{
    Verb& send = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("--wait"),
                        QStringLiteral("late")});
    QVERIFY(send.says("waiting for"));
    Verb& owner = startOwner();
    QCOMPARE(send.finish(), 0);
    QCOMPARE(owner.finish(), 0);
    QCOMPARE(texts(content(file())), QByteArrayList{"late"});
}

void LogVerbsTest::tooLongLines()
{
    Verb& owner = startOwner({QStringLiteral("--buffer-size"), QStringLiteral("8K")});
    Verb& one = start({QStringLiteral("send"), QStringLiteral("event"), QString(9000, u'x')});
    QCOMPARE(one.finish(), 1);
    QVERIFY(one.errors().contains("longer than this log can hold"));
    Verb& pipe = start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("-")});
    pipe.write("short\n" + QByteArray(100'000, 'y') + "\nafter\n");
    QCOMPARE(pipe.finish(), 0);
    QVERIFY2(pipe.errors().contains("line 2 is longer"), pipe.errors().constData());
    QCOMPARE(owner.finish(), 0);
    const QByteArrayList written = texts(content(file()));
    QCOMPARE(written.size(), 3);
    QVERIFY(written[1].size() > 7000);
    QCOMPARE(written[1].count('y'), written[1].size());
}

void LogVerbsTest::statuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("hasOwner");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("says");
    const auto row = [](const char* name, const QString& arguments, bool hasOwner, int status,
                        const char* says) {
        QTest::newRow(name) << arguments.split(u' ') << hasOwner << status << QByteArray(says);
    };
    row("second owner", QStringLiteral("own"), true, 4, "has an owner already");
    row("nobody to write it", QStringLiteral("send event x"), false, 3, "has no owner");
    row("nobody there", QStringLiteral("status"), false, 3, "nobody takes part");
    row("somebody there", QStringLiteral("status --json"), true, 0, "");
    row("data not wanted", QStringLiteral("send data T x"), true, 1, "takes no data blocks");
    row("unknown verb", QStringLiteral("sned event x"), false, 2, "Did you mean 'send'?");
    row("unknown option", QStringLiteral("tail --jsn"), false, 2, "Did you mean '--json'?");
    row("unknown level", QStringLiteral("send warn x"), false, 2, "unknown level 'warn'");
    row("unknown level to show", QStringLiteral("tail --level evnt"), false, 2,
        "Did you mean 'event'?");
    row("bad number of bytes", QStringLiteral("own --rotate 12Q"), false, 2, "'12Q'");
    row("too few bytes", QStringLiteral("own --buffer-size 1"), false, 2, "4 KiB");
    row("missing value", QStringLiteral("tail --grep"), false, 2, "--grep needs a value");
    row("value that is not taken", QStringLiteral("tail --json=x"), false, 2,
        "--json takes no value");
    row("too many fields", QStringLiteral("send event a b c d"), false, 2, "at most two fields");
    row("file in no folder", QStringLiteral("own --file /dev/null/x"), false, 1, "cannot open");
}

void LogVerbsTest::statuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, hasOwner);
    QFETCH(QByteArray, says);
    if (hasOwner)
        startOwner({QStringLiteral("--no-data-blocks")});
#ifdef Q_OS_WIN
    arguments.replaceInStrings(QStringLiteral("/dev/null/x"), QStringLiteral("C:\\no|name"));
#endif
    Verb& verb = start(arguments);
    QTEST(verb.finish(), "status");
    QVERIFY2(verb.errors().contains(says), verb.errors().constData());
    QCOMPARE(verb.errors().isEmpty(), says.isEmpty());
}

#ifdef Q_OS_LINUX
void LogVerbsTest::signalsEndOwnerAndViewer()
{
    for (const int signal : {SIGTERM, SIGINT}) {
        Verb& owner = start({QStringLiteral("own"), QStringLiteral("--file"), file()});
        QVERIFY(owner.says("writing to "));
        Verb& viewer = start({QStringLiteral("tail")});
        QVERIFY(viewer.says("showing the log"));
        QCOMPARE(start({QStringLiteral("send"), QStringLiteral("event"), QStringLiteral("last")})
                     .finish(),
                 0);
        for (Verb* verb : {&viewer, &owner}) {
            QCOMPARE(kill(static_cast<pid_t>(verb->process().processId()), signal), 0);
            QCOMPARE(verb->finish(), 0);
        }
        QVERIFY(viewer.output().contains("  last\n"));
        QVERIFY(content(file()).endsWith("\tlast\t\t\n"));
    }
}
#endif

QTEST_GUILESS_MAIN(LogVerbsTest)

#include "tst_logverbs.moc"

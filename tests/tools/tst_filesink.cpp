// The owner's file on disks that fill up, fail and are cut off in the middle of something, and the
// viewers that follow it.

#include "tools/logreading/logfollower.h"
#include "tools/vlbase/log/filesink.h"
#include "tools/vlbase/log/filetail.h"

#include <VLBase/logging/ownernotice.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>

using namespace vlbase::logging;
using namespace vlbase::logreading;
using namespace vlbase::tool::log;

namespace {

/// Files in memory, on a disk with a limit.
class BadDisk : public FileStore
{
public:
    using Content = std::shared_ptr<std::string>;

    std::map<std::string, Content> files;
    std::size_t room = std::numeric_limits<std::size_t>::max(); ///< bytes it still takes
    std::size_t mostAtOnce = std::numeric_limits<std::size_t>::max();
    int renamesLeft = std::numeric_limits<int>::max(); ///< renames and removals it still does

    std::unique_ptr<GrowingFile> open(const std::string& name) override
    {
        if (!exists(name))
            put(name, {});
        return std::make_unique<File>(*this, files[name]);
    }
    bool exists(const std::string& name) override { return files.count(name) > 0; }
    bool rename(const std::string& from, const std::string& to) override
    {
        if (!exists(from) || renamesLeft-- <= 0)
            return false;
        files[to] = files[from];
        files.erase(from);
        return true;
    }
    bool remove(const std::string& name) override
    {
        return renamesLeft-- > 0 && files.erase(name) > 0;
    }
    QString errorText() override { return QStringLiteral("bad disk"); }

    void put(const std::string& name, const std::string& text)
    {
        files[name] = std::make_shared<std::string>(text);
    }
    /// All files from the oldest one on.
    std::string all(const std::string& name) const
    {
        std::string text;
        for (int number = 20; number >= 0; --number) {
            const auto found = files.find(number == 0 ? name : name + '.' + std::to_string(number));
            if (found != files.end())
                text += *found->second;
        }
        return text;
    }

private:
    class File : public GrowingFile
    {
    public:
        File(BadDisk& disk, Content content)
            : m_disk(disk)
            , m_content(std::move(content))
        {
        }
        std::int64_t size() const override { return static_cast<std::int64_t>(m_content->size()); }
        std::int64_t readAt(std::int64_t offset, char* data, std::size_t size) const override
        {
            return static_cast<std::int64_t>(
                m_content->copy(data, size, static_cast<std::size_t>(offset)));
        }
        std::int64_t append(const char* data, std::size_t size) override
        {
            const std::size_t taken = std::min({size, m_disk.room, m_disk.mostAtOnce});
            if (taken == 0)
                return -1;
            m_content->append(data, taken);
            m_disk.room -= taken;
            return static_cast<std::int64_t>(taken);
        }
        bool cutTo(std::int64_t size) override
        {
            m_content->resize(static_cast<std::size_t>(size));
            return true;
        }
        bool isCalled(const std::string& name) const override
        {
            const auto found = m_disk.files.find(name);
            return found != m_disk.files.end() && found->second == m_content;
        }

    private:
        BadDisk& m_disk;
        Content m_content;
    };
};

std::string numbered(int number)
{
    return std::to_string(number) + '\t' + std::string(static_cast<std::size_t>(number % 17), 'x') +
           '\n';
}

std::string numberedLines(int first, int count)
{
    std::string text;
    for (int i = first; i < first + count; ++i)
        text += numbered(i);
    return text;
}

std::string polled(vlbase::logreading::LogFollower& follower)
{
    std::string lines;
    while (follower.poll(lines)) {
    }
    std::replace(lines.begin(), lines.end(), '\0', '\n');
    return lines;
}

} // namespace

class FileSinkTest : public QObject
{
    Q_OBJECT

private slots:
    void fullDisk();
    void cutsATornLineOff();
    void leavesForeignFilesAlone();
    void holdsItsFileAlone();
    void forgetsWhatIsNoLongerKept();
    void rotatesWithoutLosingALine();
    void survivesAnEndBetweenTwoRenames();
    void growsOnWhenItCannotRotate();
    void findsWhereAnOwnerStopped();
    void leavesOutWhatTheFileHas();
    void followerSeesEachLineOnce();
    void sinkFollowsItsName();
};

// It goes on where the disk stopped, and closes behind a whole line.
void FileSinkTest::fullDisk()
{
    const std::string text = numberedLines(100000, 12);
    for (std::size_t room = 0; room <= text.size(); ++room) {
        for (const bool goesOn : {true, false}) {
            BadDisk disk;
            disk.mostAtOnce = 7;
            disk.room = room;
            FileSink sink(disk, "f", {});
            QVERIFY(sink.open());
            QCOMPARE(sink.write(text), room == text.size());
            QCOMPARE(sink.errorText().isEmpty(), room == text.size());
            if (goesOn) {
                disk.room = text.size() * 2;
                QVERIFY(sink.write(numbered(100012)) && sink.errorText().isEmpty());
                QCOMPARE(disk.all("f"), numberedLines(100000, 13));
            } else {
                sink.close();
                const std::string taken = text.substr(0, room);
                QCOMPARE(disk.all("f"), taken.substr(0, taken.rfind('\n') + 1));
            }
        }
    }
}

void FileSinkTest::cutsATornLineOff()
{
    const std::string lines = numberedLines(100000, 3);
    // Also across the blocks in which the end of the last line is looked for.
    const std::string next = numbered(100003);
    for (std::string torn : {next.substr(0, next.size() - 1), std::string("------\tx"),
                             next.substr(0, 7) + std::string(140000, 'x')}) {
        for (; torn.size() < 70 || torn.size() > 139000; torn.pop_back()) {
            BadDisk disk;
            disk.put("f", lines + torn);
            FileSink sink(disk, "f", {});
            QVERIFY(sink.open());
            QCOMPARE(sink.tornBytes(), static_cast<std::int64_t>(torn.size()));
            QVERIFY(sink.write(next));
            QCOMPARE(disk.all("f"), lines + next);
            if (torn.empty() || torn.size() > 139000)
                break;
        }
    }
}

// Whatever no owner wrote stays as it is, or is gone on behind when that is asked for.
void FileSinkTest::leavesForeignFilesAlone()
{
    const std::string line = numbered(100000);
    for (const std::string& foreign :
         {std::string("note"), std::string("a\nb\n"), std::string("1234567"), std::string("100000"),
          std::string(3, '\0'), line + "note", line + "12345x", "note\n" + line.substr(0, 9),
          std::string(100000, 'x') + '\n'}) {
        BadDisk disk;
        disk.put("f", foreign);
        FileSink careful(disk, "f", {});
        QVERIFY(!careful.open() && careful.isForeign() && !careful.errorText().isEmpty());
        QCOMPARE(disk.all("f"), foreign);
        FileSink bold(disk, "f", {}, FileSink::Foreign::AppendedTo);
        QVERIFY(bold.open() && bold.write(line));
        QCOMPARE(disk.all("f"), foreign + (foreign.back() == '\n' ? "" : "\n") + line);
    }
    // Programs of other makers send lines without a number.
    for (const std::string& own : {line, line + "other\n", "other\n" + line, std::string()}) {
        BadDisk disk;
        disk.put("f", own);
        FileSink sink(disk, "f", {});
        QVERIFY(sink.open() && sink.tornBytes() == 0);
    }
}

// One owner a file, whatever name it goes by; none on what is no file.
void FileSinkTest::holdsItsFileAlone()
{
    const QTemporaryDir directory;
    const std::string name = directory.filePath(QStringLiteral("log")).toStdString();
    const auto store = makeNativeFileStore();
    auto first = store->open(name);
    QVERIFY(first);
    QVERIFY(!store->open(name) && store->errorText().contains(u"another owner"));
    first.reset();
    QVERIFY(store->open(name));
    QVERIFY(!store->open(directory.path().toStdString()));
#ifndef Q_OS_WIN
    QVERIFY(!store->open("/dev/null") && store->errorText().contains(u"no regular file"));
#endif
}

// A lower number of older files holds for those that are there; only logs are removed.
void FileSinkTest::forgetsWhatIsNoLongerKept()
{
    BadDisk disk;
    for (const char* name : {"f", "f.1", "f.2", "f.3", "f.4"})
        disk.put(name, numberedLines(100000, 3));
    disk.put("f.5", "note");
    FileSink sink(disk, "f", {40, 1});
    QVERIFY(sink.open() && sink.write(numbered(100003)));
    std::string names;
    for (const auto& file : disk.files)
        names += file.first + ' ';
    QCOMPARE(names, "f f.1 f.5 ");
}

void FileSinkTest::rotatesWithoutLosingALine()
{
    constexpr int count = 200;
    const std::string text = numberedLines(100000, count);
    for (const auto& [bytes, keep] : {std::pair(100, 0), {100, 1}, {100, 3}, {5, 4}}) {
        BadDisk disk;
        disk.mostAtOnce = 13;
        FileSink sink(disk, "f", {bytes, keep});
        QVERIFY(sink.open());
        for (int i = 0; i < count; i += 8) {
            disk.room = 20; // Full in the middle of a line now and then.
            sink.write(numberedLines(100000 + i, 8));
            disk.room = 10000;
            QVERIFY(sink.flush());
        }
        QCOMPARE(disk.files.size(), static_cast<std::size_t>(keep) + 1);
        const std::string kept = disk.all("f");
        QCOMPARE(kept, text.substr(text.size() - kept.size()));
        for (const auto& [name, content] : disk.files) {
            QCOMPARE(content->back(), '\n');
            const auto lines = std::count(content->begin(), content->end(), '\n');
            QVERIFY(lines == 1 || content->size() <= static_cast<std::size_t>(bytes));
        }
    }
}

void FileSinkTest::survivesAnEndBetweenTwoRenames()
{
    constexpr int keep = 4;
    for (int renames = 0; renames <= keep; ++renames) {
        BadDisk disk;
        int next = 100000;
        FileSink first(disk, "f", {60, keep});
        QVERIFY(first.open());
        for (; disk.files.size() <= keep - 1; ++next)
            QVERIFY(first.write(numbered(next)));
        first.close();
        const std::string before = disk.all("f");
        {
            // Ended in a rotation: what it still had to write is written by its successor.
            FileSink sink(disk, "f", {1, keep});
            QVERIFY(sink.open());
            disk.renamesLeft = renames;
            disk.room = 0;
            sink.write(numbered(next));
        }
        disk.renamesLeft = 1000;
        disk.room = 100000;
        QCOMPARE(disk.all("f"), before);
        FileSink sink(disk, "f", {60, keep});
        QVERIFY(sink.open() && sink.write(numbered(next)));
        QCOMPARE(disk.all("f"), before + numbered(next));
    }
}

void FileSinkTest::growsOnWhenItCannotRotate()
{
    BadDisk disk;
    disk.renamesLeft = 0;
    FileSink sink(disk, "f", {50, 2});
    QVERIFY(sink.open() && sink.write(numberedLines(100000, 20)));
    QCOMPARE(sink.rotationErrorText(), QStringLiteral("bad disk"));
    QCOMPARE(*disk.files["f"], numberedLines(100000, 20));
    disk.renamesLeft = 1;
    QVERIFY(sink.write(numbered(100020)) && sink.rotationErrorText().isEmpty());
    QCOMPARE(disk.all("f"), numberedLines(100000, 21));
    QCOMPARE(disk.files.size(), std::size_t{2});
}

void FileSinkTest::findsWhereAnOwnerStopped()
{
    OwnerNotice begins;
    begins.kind = OwnerNotice::Kind::LogBegins;
    begins.first = 100000;
    const std::string lost = noticeLine(noticeOfLost(3, 100009), "s");
    const std::string lines = numberedLines(100004, 3);
    std::string far = lines;
    for (int i = 0; i < 30000; ++i)
        far += "as it is\n";
    const struct
    {
        std::string older;
        std::string newer;
        FileTail::Kind kind;
        int index;
    } cases[] = {{"", "", FileTail::Kind::Unknown, 0},
                 {"", lines + "100007\tx", FileTail::Kind::Line, 100006}, // torn
                 {"", far, FileTail::Kind::Line, 100006},
                 {"", lines + lost, FileTail::Kind::Line, 100009},
                 {"", lines + noticeLine(begins, "s"), FileTail::Kind::LogBegins, 100000},
                 {lines, "", FileTail::Kind::Line, 100006}, // just rotated
                 {lines, lost, FileTail::Kind::Line, 100009}};
    for (const auto& [older, newer, kind, index] : cases) {
        BadDisk disk;
        disk.put("f.1", older);
        disk.put("f", newer);
        const FileTail tail = readFileTail(disk, "f");
        QVERIFY2(tail.kind == kind && tail.index == index, (older + '|' + newer).c_str());
    }
}

void FileSinkTest::leavesOutWhatTheFileHas()
{
    const struct
    {
        const char* file;
        const char* pending; // '|' for the zero byte
        const char* left;
    } cases[] = {{"", "100000\ta|x|", "100000\ta|x|"},
                 {"100000\ta\nx\n", "", ""},
                 {"x\n100000\ta\n", "x|100000\ta|y|", "y|"},
                 {"100000\ta\nx\nx\n", "100000\ta|x|x|x|", "x|"},
                 {"100000\ta\nx\ny\n", "y|x|", "x|"}, // only lines without a number
                 {"100000\ta\nx\n", "x|x|", "x|"},    // the same line came again
                 {"100000\ta\nx\u240Ay\n", "100000\ta|x\ny|z|", "z|"},
                 {"100000\ta\nx\n", "100000\tb|x|", "100000\tb|x|"}}; // of another round
    for (const auto& [file, pending, left] : cases) {
        BadDisk disk;
        disk.put("f", file);
        std::string zeroEnded = pending;
        std::replace(zeroEnded.begin(), zeroEnded.end(), '|', '\0');
        const auto bytes = bytesInFile(readFileTail(disk, "f"), zeroEnded);
        QCOMPARE(std::string(pending).substr(bytes), std::string(left));
    }
}

void FileSinkTest::followerSeesEachLineOnce()
{
    constexpr int count = 200;
    // At once, a rotation behind, three behind, and when older files go at once.
    for (const auto& [keep, linesBetweenPolls] : {std::pair(3, 1), {3, 8}, {20, 24}, {0, 1}}) {
        const QTemporaryDir directory;
        const std::string name = directory.filePath(QStringLiteral(u"l\u00F6g")).toStdString();
        const auto store = makeNativeFileStore();
        FileSink sink(*store, name, {128, keep});
        QVERIFY(sink.open() && sink.write(numberedLines(200000, 3)));
        LogFollower follower(name, LogSeries::Extent::Rotated);
        QString reason;
        QVERIFY(follower.open(reason));
        follower.startAtEnd(0);
        std::string seen;
        for (int i = 0; i < count; ++i) {
            QVERIFY(sink.write(numbered(100000 + i)));
            if (i % linesBetweenPolls == 0)
                seen += polled(follower);
        }
        QCOMPARE(seen + polled(follower), numberedLines(100000, count));
        QVERIFY(sink.rotationErrorText().isEmpty());
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(), keep + 1);
    }
}

void FileSinkTest::sinkFollowsItsName()
{
    const QTemporaryDir directory;
    const std::string name = directory.filePath(QStringLiteral("log")).toStdString();
    const auto store = makeNativeFileStore();
    FileSink sink(*store, name, {});
    QVERIFY(sink.open());
    LogFollower follower(name, LogSeries::Extent::Rotated);
    QString reason;
    QVERIFY(follower.open(reason));
    follower.startAtEnd(0);
    QVERIFY(sink.write(numbered(100000)));
    sink.followName();
    QVERIFY(sink.write(numbered(100001)) && store->rename(name, name + ".moved"));
    QVERIFY(sink.write(numbered(100002)));
    sink.followName();
    QVERIFY(sink.write(numbered(100003)));
    QCOMPARE(polled(follower), numberedLines(100000, 4));
    QFile file(QString::fromStdString(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray::fromStdString(numbered(100003)));
}

QTEST_GUILESS_MAIN(FileSinkTest)

#include "tst_filesink.moc"

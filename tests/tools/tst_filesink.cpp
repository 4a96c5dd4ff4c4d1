// The owner's file on disks that fill up, fail and are cut off in the middle of something, and the
// viewers that follow it.

#include "tools/vlbase/log/filefollower.h"
#include "tools/vlbase/log/filesink.h"
#include "tools/vlbase/log/filetail.h"
#include "tools/vlbase/log/ownnotice.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <limits>
#include <map>

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
        Content& content = files[name];
        if (!content)
            content = std::make_shared<std::string>();
        return std::make_unique<File>(*this, content);
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

std::string polled(FileFollower& follower)
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
    void goesOnWhereTheDiskStopped();
    void endsInAWholeLineOnAFullDisk();
    void cutsATornLineOff();
    void rotatesWithoutLosingALine_data();
    void rotatesWithoutLosingALine();
    void survivesAnEndBetweenTwoRenames();
    void growsOnWhenItCannotRotate();
    void findsWhereAnOwnerStopped_data();
    void findsWhereAnOwnerStopped();
    void leavesOutWhatTheFileHas_data();
    void leavesOutWhatTheFileHas();
    void followerSeesEachLineOnce_data();
    void followerSeesEachLineOnce();
    void sinkFollowsItsName();
};

void FileSinkTest::goesOnWhereTheDiskStopped()
{
    const std::string text = numberedLines(100000, 12);
    for (std::size_t room = 0; room <= text.size(); ++room) {
        BadDisk disk;
        disk.mostAtOnce = 7;
        disk.room = room;
        FileSink sink(disk, "f", {});
        QVERIFY(sink.open());
        QCOMPARE(sink.write(text), room == text.size());
        QCOMPARE(sink.errorText().isEmpty(), room == text.size());
        disk.room = text.size() * 2;
        QVERIFY(sink.write(numberedLines(100012, 1)));
        QVERIFY(sink.errorText().isEmpty());
        QCOMPARE(disk.all("f"), numberedLines(100000, 13));
    }
}

void FileSinkTest::endsInAWholeLineOnAFullDisk()
{
    const std::string text = numberedLines(100000, 5);
    for (std::size_t room = 0; room <= text.size(); ++room) {
        BadDisk disk;
        disk.room = room;
        FileSink sink(disk, "f", {});
        QVERIFY(sink.open());
        sink.write(text);
        sink.close();
        const std::string kept = disk.all("f");
        QCOMPARE(kept, text.substr(0, text.rfind('\n', room - 1) + 1)
                           .substr(0, room == 0 ? 0 : std::string::npos));
    }
}

void FileSinkTest::cutsATornLineOff()
{
    // Also across the blocks in which the end of the last line is looked for.
    for (const std::size_t torn : {0u, 1u, 70000u, 140000u}) {
        BadDisk disk;
        const std::string whole = numberedLines(100000, 3);
        disk.files["f"] = std::make_shared<std::string>(whole + std::string(torn, 'x'));
        FileSink sink(disk, "f", {});
        QVERIFY(sink.open());
        QCOMPARE(sink.tornBytes(), static_cast<std::int64_t>(torn));
        QVERIFY(sink.write(numbered(100003)));
        QCOMPARE(disk.all("f"), numberedLines(100000, 4));
    }
}

void FileSinkTest::rotatesWithoutLosingALine_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("keep");
    QTest::newRow("keeps none") << 100 << 0;
    QTest::newRow("keeps one") << 100 << 1;
    QTest::newRow("keeps three") << 100 << 3;
    QTest::newRow("each line is too long") << 5 << 4;
}

void FileSinkTest::rotatesWithoutLosingALine()
{
    QFETCH(int, bytes);
    QFETCH(int, keep);
    constexpr int count = 200;
    const std::string text = numberedLines(100000, count);
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

void FileSinkTest::survivesAnEndBetweenTwoRenames()
{
    constexpr int keep = 4;
    for (int renames = 0; renames <= keep; ++renames) {
        BadDisk disk;
        int next = 100000;
        {
            FileSink sink(disk, "f", {60, keep});
            QVERIFY(sink.open());
            for (; disk.files.size() <= keep - 1; ++next)
                QVERIFY(sink.write(numbered(next)));
        }
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
        QVERIFY(sink.open());
        QVERIFY(sink.write(numbered(next)));
        QCOMPARE(disk.all("f"), before + numbered(next));
        QCOMPARE(disk.files["f"]->back(), '\n');
    }
}

void FileSinkTest::growsOnWhenItCannotRotate()
{
    BadDisk disk;
    disk.renamesLeft = 0;
    FileSink sink(disk, "f", {50, 2});
    QVERIFY(sink.open());
    for (int i = 100000; i < 100020; ++i)
        QVERIFY(sink.write(numbered(i)));
    QCOMPARE(sink.rotationErrorText(), QStringLiteral("bad disk"));
    QCOMPARE(*disk.files["f"], numberedLines(100000, 20));
    disk.renamesLeft = 1;
    QVERIFY(sink.write(numbered(100020)));
    QVERIFY(sink.rotationErrorText().isEmpty());
    QCOMPARE(disk.all("f"), numberedLines(100000, 21));
    QCOMPARE(disk.files.size(), std::size_t{2});
}

void FileSinkTest::findsWhereAnOwnerStopped_data()
{
    QTest::addColumn<QByteArray>("older");
    QTest::addColumn<QByteArray>("newer");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("index");
    OwnNotice begins;
    begins.kind = OwnNotice::Kind::LogBegins;
    begins.first = 100000;
    const auto begun = QByteArray::fromStdString(noticeLine(begins, "s"));
    const auto lost = QByteArray::fromStdString(noticeLine(noticeOfLost(3, 100009), "s"));
    const auto lines = QByteArray::fromStdString(numberedLines(100004, 3));
    const auto kind = [](FileTail::Kind value) { return static_cast<int>(value); };
    const int line = kind(FileTail::Kind::Line);
    QTest::newRow("nothing") << QByteArray() << QByteArray() << kind(FileTail::Kind::Unknown) << 0;
    QTest::newRow("line") << QByteArray() << lines << line << 100006;
    QTest::newRow("torn line") << QByteArray() << lines + "100007\tx" << line << 100006;
    QTest::newRow("text after it") << QByteArray() << lines + "as it is\n" << line << 100006;
    QTest::newRow("far back") << QByteArray() << lines + QByteArray("as it is\n").repeated(30000)
                              << line << 100006;
    QTest::newRow("counted after it") << QByteArray() << lines + lost << line << 100009;
    QTest::newRow("a log began") << QByteArray() << lines + begun << kind(FileTail::Kind::LogBegins)
                                 << 100000;
    QTest::newRow("just rotated") << lines << QByteArray() << line << 100006;
    QTest::newRow("newer comes first") << lines << lost << line << 100009;
}

void FileSinkTest::findsWhereAnOwnerStopped()
{
    QFETCH(QByteArray, older);
    QFETCH(QByteArray, newer);
    BadDisk disk;
    disk.files["f.1"] = std::make_shared<std::string>(older.toStdString());
    disk.files["f"] = std::make_shared<std::string>(newer.toStdString());
    const FileTail tail = readFileTail(disk, "f");
    QTEST(static_cast<int>(tail.kind), "kind");
    QTEST(tail.index, "index");
}

void FileSinkTest::leavesOutWhatTheFileHas_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("pending"); // '|' for the zero byte
    QTest::addColumn<QByteArray>("left");
    const auto row = [](const char* name, const char* file, const char* pending, const char* left) {
        QTest::newRow(name) << QByteArray(file) << QByteArray(pending) << QByteArray(left);
    };
    row("nothing in the file", "", "100000\ta|x|", "100000\ta|x|");
    row("nothing pending", "100000\ta\nx\n", "", "");
    row("up to a number", "x\n100000\ta\n", "x|100000\ta|y|", "y|");
    row("behind a number", "100000\ta\nx\nx\n", "100000\ta|x|x|x|", "x|");
    row("only lines without one", "100000\ta\nx\ny\n", "y|x|", "x|");
    row("the same line came again", "100000\ta\nx\n", "x|x|", "x|");
    row("written as pictures", "100000\ta\nx\u240Ay\n", "100000\ta|x\ny|z|", "z|");
    row("the number of another round", "100000\ta\nx\n", "100000\tb|x|", "100000\tb|x|");
}

void FileSinkTest::leavesOutWhatTheFileHas()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, pending);
    QFETCH(QByteArray, left);
    BadDisk disk;
    disk.files["f"] = std::make_shared<std::string>(file.toStdString());
    const FileTail tail = readFileTail(disk, "f");
    pending.replace('|', '\0');
    left.replace('|', '\0');
    QCOMPARE(pending.mid(static_cast<qsizetype>(bytesInFile(tail, pending.toStdString()))), left);
}

void FileSinkTest::followerSeesEachLineOnce_data()
{
    QTest::addColumn<int>("keep");
    QTest::addColumn<int>("linesBetweenPolls");
    QTest::newRow("at once") << 3 << 1;
    QTest::newRow("a rotation behind") << 3 << 8;
    QTest::newRow("three rotations behind") << 20 << 24;
    QTest::newRow("older files go at once") << 0 << 1;
}

void FileSinkTest::followerSeesEachLineOnce()
{
    QFETCH(int, keep);
    QFETCH(int, linesBetweenPolls);
    const QTemporaryDir directory;
    const std::string name = directory.filePath(QStringLiteral(u"l\u00F6g")).toStdString();
    const auto store = makeNativeFileStore();
    FileSink sink(*store, name, {128, keep});
    QVERIFY(sink.open());
    QVERIFY(sink.write(numberedLines(200000, 3)));

    FileFollower follower(name);
    constexpr int count = 200;
    std::string seen;
    for (int i = 0; i < count; ++i) {
        QVERIFY(sink.write(numbered(100000 + i)));
        if (i % linesBetweenPolls == 0)
            seen += polled(follower);
    }
    seen += polled(follower);
    QCOMPARE(seen, numberedLines(100000, count));
    QVERIFY(sink.rotationErrorText().isEmpty());
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(),
             keep == 0 ? 1 : std::min(keep + 1, 21));
}

void FileSinkTest::sinkFollowsItsName()
{
    const QTemporaryDir directory;
    const std::string name = directory.filePath(QStringLiteral("log")).toStdString();
    const auto store = makeNativeFileStore();
    FileSink sink(*store, name, {});
    QVERIFY(sink.open());
    FileFollower follower(name);
    QVERIFY(sink.write(numbered(100000)));
    sink.followName();
    QVERIFY(sink.write(numbered(100001)));
    QVERIFY(store->rename(name, name + ".moved"));
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

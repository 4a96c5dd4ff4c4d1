#include "../support/privatetemp.h"
#include "recordingtracer.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/logfile.h>
#include <VLBase/errorhandling/vlexception.h>
#include <VLBase/errorhandling/vltextfile.h>

#include <QtTest>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
#endif

namespace {

void put(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

} // namespace

class TextFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_qs)); }
    void cleanup() { ErrorHandler::SetLogTracer(nullptr); }

    void refusesAMissingFile()
    {
        for (const bool traced : {true, false}) {
            const QString path = m_temp.filePath(u"missing"_qs);
            m_log = TracerLog();
            ErrorHandler::SetLogTracer(std::make_unique<RecordingTracer>(m_log));
            ErrorHandler::Instance().SetMessageMask(32, traced);
            try {
                const VLTextFile file(path, false);
                QFAIL("opened");
            } catch (VLException& exception) {
                exception.SetErrorTime(QTime(0, 0));
                QCOMPARE(exception.GetExceptionWideText(ExceptionTextRecord, 1),
                         u"!@File does not exist - see Details@errorhandling/vltextfile@39@"
                         "VLTextFile@ctor@00:00:00"_qs);
                QCOMPARE(exception.GetErrorId(), 0xFFFFFFFFU);
            }
            QCoreApplication::sendPostedEvents();
            ErrorHandler::SetLogTracer(nullptr);
            ErrorHandler::Instance().SetMessageMask(32, true);
            QVERIFY(!QFile::exists(path));
            const QString trace = u"3@%1@errorhandling/vltextfile@37@@@"_qs.arg(path);
            QCOMPARE(m_log.sent.filter(u"errorhandling/vltextfile"_qs).size(), traced ? 1 : 0);
            QCOMPARE(m_log.sent.filter(trace).size(), traced ? 1 : 0);
        }
    }

    void countsWhatItWrites()
    {
        constexpr std::pair<int, int> cases[] = {
            {0, 2}, {3, 5}, {65533, 65535}, {65534, 0}, {65540, 6}};
        const QString path = m_temp.filePath(u"counted"_qs);
        for (const auto& [length, count] : cases) {
            QFile::remove(path);
            const QByteArray line(length, 'x');
            {
                LogFile file(path);
                QCOMPARE(int(file.WriteLine(line.toStdString())), count);
                QCOMPARE(int(file.AppendLine(line.toStdString())), count);
                QCOMPARE(int(file.WriteLine(QString::fromLatin1(line))), count);
                QCOMPARE(int(file.AppendLine(QString::fromLatin1(line))), count);
                QCOMPARE(file.AddMessage(line.toStdString()), count != 0);
            }
            // Of wide text the address stands there.
            const QRegularExpression form(
                u"\\A(x*)\\n\\1\\n0x[0-9a-f]+\\n0x[0-9a-f]+\\n\\1\\n\\z"_qs);
            QCOMPARE(form.match(QString::fromLatin1(contentOf(path))).capturedLength(1), length);
        }
    }

    void overwritesWithoutTruncating()
    {
        const QString path = m_temp.filePath(u"overwritten"_qs);
        put(path, "first line\nsecond line\n");
        VLTextFile file(path, true);
        QVERIFY(file.isOpen() && file.size() == 23);
        file.WriteLine(std::string("\xFF\0\xC3", 3)); // Bytes, not characters.
        file.AppendLine(std::string("ab"));
        QCOMPARE(contentOf(path), QByteArray("\xFF\0\xC3\nab\nine\nsecond line\n", 23));
    }

    void readsToTheLastLine()
    {
        const QString path = m_temp.filePath(u"read"_qs);
        put(path, "one\n\ngr\xC3\xB6\xC3\x9F"
                  "er\nlast");
        VLTextFile file(path, false);
        QVERIFY(!file.atEnd());
        for (const QString& line : {u"one"_qs, QString(), u"gr\u00F6\u00DFer"_qs, u"last"_qs})
            QCOMPARE(file.ReadLine(), line);
        QVERIFY(file.atEnd() && file.ReadLine().isEmpty());
        put(path, QByteArray());
        QVERIFY(VLTextFile(path, false).ReadLine().isEmpty());
    }

    void swallowsWhatItCannotWrite()
    {
        QStringList paths{m_temp.filePath(u"nowhere/file"_qs), m_temp.path()};
        if (QFile::exists(u"/dev/full"_qs))
            paths += u"/dev/full"_qs;
        for (const QString& path : paths) {
            LogFile file(path);
            for (int i = 0; i < 100; ++i) {
                QVERIFY(file.AddMessage("abc"));
                QCOMPARE(int(file.WriteLine(u"abc"_qs)), 5);
            }
            QVERIFY(file.isOpen() || file.ReadLine().isEmpty());
        }
    }

#ifdef Q_OS_LINUX
    void losesWholeLinesOnAFullDisk()
    {
        const auto limitFiles = [](rlim_t bytes) {
            rlimit limit = {};
            getrlimit(RLIMIT_FSIZE, &limit);
            limit.rlim_cur = std::min(bytes, limit.rlim_max);
            setrlimit(RLIMIT_FSIZE, &limit);
        };
        std::signal(SIGXFSZ, SIG_IGN);
        const QString path = m_temp.filePath(u"full"_qs);
        LogFile file(path);
        file.AddMessage("first");
        limitFiles(8);
        for (int i = 0; i < 10'000; ++i)
            file.AddMessage("lost");
        limitFiles(RLIM_INFINITY);
        file.AddMessage("last");
        QCOMPARE(contentOf(path), QByteArray("first\nlast\n"));
    }
#endif

    void opensAFileThatCameLater()
    {
        const QString path = m_temp.filePath(u"later/file"_qs);
        VLTextFile file(path, true);
        QVERIFY(!file.Open(QIODevice::ReadOnly));
        QVERIFY(QDir(m_temp.path()).mkdir(u"later"_qs));
        put(path, "content\n");
        QVERIFY(file.Open(QIODevice::ReadOnly) && !file.Open(QIODevice::ReadOnly));
        QCOMPARE(int(file.WriteLine(std::string("abc"))), 5);
        QCOMPARE(file.ReadLine(), u"content"_qs);
    }

private:
    PrivateTemp m_temp;
    TracerLog m_log;
};

QTEST_GUILESS_MAIN(TextFileTest)
#include "tst_textfile.moc"

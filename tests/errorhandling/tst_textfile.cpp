#include "../support/privatetemp.h"
#include "recordingtracer.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/logfile.h>
#include <VLBase/errorhandling/vlexception.h>
#include <VLBase/errorhandling/vltextfile.h>

#include <QtTest>

class TextFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }
    void refusesAMissingFile_data();
    void refusesAMissingFile();
    void countsWhatItWrites_data();
    void countsWhatItWrites();
    void overwritesWithoutTruncating();
    void writesTheAddressOfWideText();
    void readsToTheLastLine();
    void swallowsWhatItCannotWrite_data();
    void swallowsWhatItCannotWrite();
    void opensAFileThatCameLater();

private:
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

    PrivateTemp m_temp;
};

void TextFileTest::refusesAMissingFile_data()
{
    QTest::addColumn<bool>("traced");
    QTest::newRow("with a trace") << true;
    QTest::newRow("without a trace") << false;
}

void TextFileTest::refusesAMissingFile()
{
    QFETCH(bool, traced);
    const QString path = m_temp.filePath(QStringLiteral("missing"));
    TracerLog log;
    ErrorHandler::SetLogTracer(std::make_unique<RecordingTracer>(log));
    ErrorHandler::Instance().SetMessageMask(32, traced);
    try {
        const VLTextFile file(path, false);
        QFAIL("opened");
    } catch (const VLException& exception) {
        QCOMPARE(exception.GetErrorReason(), QStringLiteral("File does not exist - see Details"));
        QCOMPARE(exception.GetFileName(), QStringLiteral("errorhandling/vltextfile"));
        QCOMPARE(exception.ClassName(), QStringLiteral("VLTextFile"));
        QCOMPARE(exception.GetMethodName(), QStringLiteral("ctor"));
        QCOMPARE(exception.GetLineNumber(), 39U);
        QCOMPARE(exception.GetErrorId(), 0xFFFFFFFFU);
    }
    QCoreApplication::sendPostedEvents();
    ErrorHandler::SetLogTracer(nullptr);
    ErrorHandler::Instance().SetMessageMask(32, true);

    QVERIFY(!QFile::exists(path));
    const QStringList traces = log.sent.filter(QStringLiteral("errorhandling/vltextfile"));
    QCOMPARE(traces.size(), traced ? 1 : 0);
    if (traced)
        QVERIFY(traces.first().startsWith(
            QStringLiteral("3@%1@errorhandling/vltextfile@37@@@").arg(path)));
}

void TextFileTest::countsWhatItWrites_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("count");
    QTest::newRow("empty") << 0 << 2;
    QTest::newRow("three") << 3 << 5;
    QTest::newRow("last before the count wraps") << 65533 << 65535;
    QTest::newRow("wraps to zero") << 65534 << 0;
    QTest::newRow("wraps past zero") << 65540 << 6;
}

void TextFileTest::countsWhatItWrites()
{
    QFETCH(int, length);
    QFETCH(int, count);
    const QString path = m_temp.filePath(QStringLiteral("counted"));
    QFile::remove(path);
    const std::string line(static_cast<std::size_t>(length), 'x');
    {
        LogFile file(path);
        QCOMPARE(int(file.WriteLine(line)), count);
        QCOMPARE(int(file.AppendLine(line)), count);
        QCOMPARE(int(file.WriteLine(QString(length, u'x'))), count);
        QCOMPARE(file.AddMessage(line), count != 0);
    }
    const QByteArray expected(length, 'x');
    QVERIFY(contentOf(path).startsWith(expected + '\n' + expected + "\n0x"));
    QVERIFY(contentOf(path).endsWith('\n' + expected + '\n'));
}

void TextFileTest::overwritesWithoutTruncating()
{
    const QString path = m_temp.filePath(QStringLiteral("overwritten"));
    put(path, "first line\nsecond line\n");
    VLTextFile file(path, true);
    QVERIFY(file.isOpen());
    QCOMPARE(file.size(), 23);
    file.WriteLine(std::string("\xFF\0\xC3", 3)); // Bytes, not characters.
    QCOMPARE(contentOf(path), QByteArray("\xFF\0\xC3\nt line\nsecond line\n", 23));
    file.AppendLine(std::string("ab"));
    QCOMPARE(contentOf(path), QByteArray("\xFF\0\xC3\nab\nine\nsecond line\n", 23));
}

void TextFileTest::writesTheAddressOfWideText()
{
    const QString path = m_temp.filePath(QStringLiteral("address"));
    VLTextFile file(path, true);
    QCOMPARE(int(file.WriteLine(QStringLiteral("text"))), 6);
    QCOMPARE(int(file.AppendLine(QStringLiteral("text"))), 6);
    const QRegularExpression addresses(QStringLiteral("\\A0x[0-9a-f]+\\n0x[0-9a-f]+\\n\\z"));
    QVERIFY(addresses.match(QString::fromLatin1(contentOf(path))).hasMatch());
}

void TextFileTest::readsToTheLastLine()
{
    const QString path = m_temp.filePath(QStringLiteral("read"));
    put(path, "one\n\ngr\xC3\xB6\xC3\x9F"
              "er\nlast");
    VLTextFile file(path, false);
    QVERIFY(!file.atEnd());
    QCOMPARE(file.ReadLine(), QStringLiteral("one"));
    QCOMPARE(file.ReadLine(), QString());
    QCOMPARE(file.ReadLine(), QStringLiteral(u"gr\u00F6\u00DFer"));
    QCOMPARE(file.ReadLine(), QStringLiteral("last"));
    QVERIFY(file.atEnd());
    QVERIFY(file.ReadLine().isEmpty());

    put(path, QByteArray());
    QVERIFY(VLTextFile(path, false).ReadLine().isEmpty());
}

void TextFileTest::swallowsWhatItCannotWrite_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no directory") << m_temp.filePath(QStringLiteral("nowhere/file"));
    QTest::newRow("a directory") << m_temp.path();
    if (QFile::exists(QStringLiteral("/dev/full")))
        QTest::newRow("full disk") << QStringLiteral("/dev/full");
}

void TextFileTest::swallowsWhatItCannotWrite()
{
    QFETCH(QString, path);
    LogFile file(path);
    for (int i = 0; i < 100; ++i) {
        QVERIFY(file.AddMessage("abc"));
        QCOMPARE(int(file.WriteLine(QStringLiteral("abc"))), 5);
    }
    if (!file.isOpen())
        QVERIFY(file.ReadLine().isEmpty());
}

void TextFileTest::opensAFileThatCameLater()
{
    const QString path = m_temp.filePath(QStringLiteral("later/file"));
    VLTextFile file(path, true);
    QVERIFY(!file.Open(QIODevice::ReadOnly));
    QVERIFY(QDir(m_temp.path()).mkdir(QStringLiteral("later")));
    put(path, "content\n");
    QVERIFY(file.Open(QIODevice::ReadOnly));
    QVERIFY(!file.Open(QIODevice::ReadOnly));
    QCOMPARE(int(file.WriteLine(std::string("abc"))), 5);
    QCOMPARE(file.ReadLine(), QStringLiteral("content"));
}

QTEST_GUILESS_MAIN(TextFileTest)
#include "tst_textfile.moc"

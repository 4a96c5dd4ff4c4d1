#include "testlog.h"

#include <VLBase/logging/ilogdata.h>
#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/logtracer.h>
#include <VLBase/logging/logwriter.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QSysInfo>
#include <QTest>

#include <memory>
#include <thread>

namespace {

class TestWriter : public CLogWriter
{
public:
    using CLogWriter::CLogWriter;
    using CLogWriter::Send;
};

class TestData : public ILogData
{
public:
    QString GetDataText() override { return QStringLiteral("text"); }
    QString GetDataType() override { return QStringLiteral("type"); }
};

const QString none;

} // namespace

class tst_LogWriter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(!useOwnLog().isEmpty()); }
    void init()
    {
        m_owner = std::make_unique<TestShared>(0, 20000);
        QVERIFY(m_owner->IsOpen());
    }
    void cleanup() { m_owner.reset(); }

    void header();
    void events_data();
    void events();
    void names();
    void dataBlocks();
    void xmlMode();
    void injection();
    void waitForRoom();

private:
    /// The lines since the last call, which must be the same in both halves.
    QList<QByteArray> takeLines()
    {
        QList<QByteArray> result;
        const auto lines = m_owner->lines(1);
        if (m_owner->lines(0) != lines)
            return {QByteArrayLiteral("the halves differ")};
        for (const std::string& line : lines)
            result << QByteArray::fromStdString(line);
        for (const int half : {0, 1}) {
            const Lock lock(m_owner.get());
            char* data = nullptr;
            long length = 0;
            m_owner->GetBuffer(half, &data, &length);
            m_owner->ReleaseBuffer();
        }
        return result;
    }

    std::unique_ptr<TestShared> m_owner;
};

void tst_LogWriter::header()
{
    CLogWriter writer(QStringLiteral("module"));
    const QDateTime before = QDateTime::currentDateTimeUtc();
    writer.SendError(QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"));
    const QDateTime after = QDateTime::currentDateTimeUtc();
    const QList<QByteArray> fields = takeLines().value(0).split('\t');
    QCOMPARE(fields.size(), 9);
    QCOMPARE(fields[0], QByteArray("100000"));
    QDateTime sent = QDateTime::fromString(QString::fromLatin1(fields[1]),
                                           QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    sent.setTimeSpec(Qt::UTC);
    QVERIFY(sent.isValid() && sent >= before.addMSecs(-1000) && sent <= after);
    const qint64 offset = QDateTime::currentDateTime().offsetFromUtc();
    QCOMPARE(fields[2], "UTC: " + QByteArray::number(offset * 1000000) + ".000000");
    QCOMPARE(QString::fromUtf8(fields[3]), QSysInfo::machineHostName());
    QCOMPARE(fields.mid(4).join('|'), QByteArray("module|Error|a|b|c"));
}

void tst_LogWriter::events_data()
{
    QTest::addColumn<std::function<void(TestWriter&)>>("send");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char* name, std::function<void(TestWriter&)> send, QByteArray text) {
        QTest::newRow(name) << send << text;
    };
    const QString a(u'a');
    const QString b(u'b');
    const QString c(u'c');
    row(
        "warning", [=](TestWriter& w) { w.SendWarning(a, b, c); }, "M\tWarning\ta\tb\tc");
    row(
        "event", [=](TestWriter& w) { w.SendEvent(a, none, c); }, "M\tEvent\ta\t\tc");
    row(
        "admin", [=](TestWriter& w) { w.SendAdmin(none, none, none); }, "M\tAdmin\t\t\t");
    row(
        "trace", [=](TestWriter& w) { w.SendTrace(a, b, none); }, "M\tTrace\ta\tb\t");
    row(
        "tabs stay", [=](TestWriter& w) { w.SendError(QStringLiteral("\t\n"), b, c); },
        "M\tError\t\t\n\tb\tc");
    row(
        "utf-8",
        [=](TestWriter& w) { w.SendError(QStringLiteral(u"\u00e4\u20ac\U0001F600"), b, c); },
        "M\tError\t\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\tb\tc");
    row(
        "half a pair", [=](TestWriter& w) { w.SendError(QString(QChar(0xD83D)), b, c); },
        "M\tError\t?\tb\tc");
    row(
        "zero ends the line",
        [=](TestWriter& w) {
            w.SendError(QStringLiteral("x") + QChar(0) + QStringLiteral("y"), b, c);
        },
        "M\tError\tx");
    row(
        "any event", [=](TestWriter& w) { w.Send(QStringLiteral("Own\tfields")); },
        "M\tOwn\tfields");
    row(
        "empty event", [=](TestWriter& w) { w.Send(none); }, "M\t");
    row(
        "longer than any buffer of ours", [=](TestWriter& w) { w.Send(QString(3000, u'\u20ac')); },
        "M\t" + QByteArray("\xE2\x82\xAC").repeated(3000));
}

void tst_LogWriter::events()
{
    QFETCH(std::function<void(TestWriter&)>, send);
    QFETCH(QByteArray, expected);
    TestWriter writer(QStringLiteral("M"));
    send(writer);
    send(writer); // the second may find the buffers of the first
    const QList<QByteArray> lines = takeLines();
    QCOMPARE(lines.size(), 2);
    for (const QByteArray& line : lines)
        QCOMPARE(line.split('\t').mid(4).join('\t'), expected);
}

void tst_LogWriter::names()
{
    CLogWriter writer;
    CLogTracer tracer;
    QCOMPARE(writer.GetModuleName(), QStringLiteral("Module Unknown"));
    QCOMPARE(tracer.GetModuleName(), QStringLiteral("Module Unknown"));
    QCOMPARE(writer.GetStationName(), QSysInfo::machineHostName());
    CLogWriter copy(writer);
    writer.SetModuleName(QStringLiteral("\u00fc"));
    writer.SendEvent(none, none, none);
    copy.SendEvent(none, none, none);
    copy = writer;
    copy.SendEvent(none, none, none);
    const QList<QByteArray> lines = takeLines();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0].split('\t')[4], QByteArray("\xC3\xBC"));
    QCOMPARE(lines[1].split('\t')[4], QByteArray("Module Unknown"));
    QCOMPARE(lines[2].split('\t')[4], QByteArray("\xC3\xBC"));
}

void tst_LogWriter::dataBlocks()
{
    CLogWriter writer(QStringLiteral("M"));
    CLogTracer tracer;
    tracer.SetModuleName(QStringLiteral("T"));
    ILogTracer& asTracer = tracer;
    QVERIFY(asTracer.IsOpen());
    TestData data;
    writer.SendData(&data, QStringLiteral("note"));
    writer.SendData(QStringLiteral("N"), &data, none);
    asTracer.SendDataTrace(QStringLiteral("x %1"));
    asTracer.ReportException(QStringLiteral("x"));
    QList<QByteArray> events;
    for (const QByteArray& line : takeLines())
        events << line.split('\t').mid(4).join('|');
    QCOMPARE(events, (QList<QByteArray>{"M|Data|type|text|note", "N|Data|type|text|",
                                        "T|Data|Trace|x %1|", "T|Error|x||"}));

    m_owner->SetAcceptDataBlocks(false);
    const long index = m_owner->GetIndex();
    writer.SendData(&data, none);
    writer.SendData(QStringLiteral("O"), &data, none);
    asTracer.SendDataTrace(QStringLiteral("x"));
    QVERIFY(takeLines().isEmpty());
    QCOMPARE(m_owner->GetIndex(), index);
    QCOMPARE(writer.GetModuleName(), QStringLiteral("O"));
}

void tst_LogWriter::xmlMode()
{
    TestData data;
    QVERIFY(!data.GetXMLMode());
    data.SetXMLMode(true);
    QVERIFY(TestData(data).GetXMLMode());
}

void tst_LogWriter::injection()
{
    CLiveLogReader reader;
    const QString line = QStringLiteral("any\tline \u20ac");
    reader.SendLikeItIs(line);
    char* data = nullptr;
    long length = 0;
    reader.GetBuffer(&data, &length);
    QCOMPARE(QByteArray(data, static_cast<int>(length)), line.toUtf8() + '\0');
    reader.ReleaseBuffer();
    reader.GetBuffer(&data, &length);
    QCOMPARE(length, 0L);
    reader.ReleaseBuffer();
    QCOMPARE(m_owner->lines(1).size(), 1u);
    QCOMPARE(m_owner->GetIndex(), 100000L);
}

void tst_LogWriter::waitForRoom()
{
    CLogWriter writer;
    writer.SetFullBufferWait(-5);
    QCOMPARE(writer.GetFullBufferWait(), 0);
    const QString text(1000, u'x');
    for (int i = 0; i < 16; ++i) // beyond three quarters
        writer.SendEvent(text, none, none);
    QCOMPARE(m_owner->lines(1).size(), 16u);

    writer.SetFullBufferWait(150);
    QElapsedTimer time;
    time.start();
    writer.SendEvent(text, none, none);
    QVERIFY(time.elapsed() >= 150);
    QCOMPARE(m_owner->lines(1).size(), 17u);
    {
        const Lock lock(&writer); // nobody could make room
        time.start();
        writer.SendEvent(text, none, none);
        QVERIFY(time.elapsed() < 150);
    }

    writer.SetFullBufferWait(60000);
    std::thread drainer([this] {
        QTest::qSleep(50);
        takeLines();
    });
    time.start();
    writer.SendEvent(text, none, none);
    const qint64 waited = time.elapsed();
    drainer.join();
    QVERIFY(waited >= 40 && waited < 10000);
    QCOMPARE(m_owner->lines(1).size(), 1u);

    writer.SetFullBufferWait(0);
    for (int i = 0; i < 16; ++i)
        writer.SendEvent(text, none, none);
    writer.SetFullBufferWait(60000);
    m_owner.reset(); // without an owner nobody waits
    time.start();
    writer.SendEvent(text, none, none);
    QVERIFY(time.elapsed() < 10000);
}

QTEST_GUILESS_MAIN(tst_LogWriter)
#include "tst_logwriter.moc"

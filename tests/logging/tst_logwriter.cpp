#include "testlog.h"

#include <VLBase/logging/ilogdata.h>
#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/logtracer.h>
#include <VLBase/logging/logwriter.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QSysInfo>
#include <QTest>

#include <functional>
#include <memory>
#include <thread>
#include <utility>

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
    void events();
    void dataBlocks();
    void waitForRoom();

private:
    /// The lines since the last call, which must be the same in both halves.
    QList<QByteArray> takeLines()
    {
        QList<QByteArray> result;
        const auto lines = m_owner->lines(1, true);
        if (m_owner->lines(0, true) != lines)
            return {QByteArrayLiteral("the halves differ")};
        for (const std::string& line : lines)
            result << QByteArray::fromStdString(line);
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

void tst_LogWriter::events()
{
    const QString a(u'a');
    const QString b(u'b');
    using Send = std::function<void(TestWriter&)>;
    const std::pair<Send, QByteArray> cases[] = {
        {[=](auto& w) { w.SendWarning(a, b, a); }, "Warning\ta\tb\ta"},
        {[=](auto& w) { w.SendEvent(a, none, b); }, "Event\ta\t\tb"},
        {[=](auto& w) { w.SendAdmin(none, none, none); }, "Admin\t\t\t"},
        {[=](auto& w) { w.SendTrace(a, b, none); }, "Trace\ta\tb\t"},
        {[=](auto& w) { w.SendError(QStringLiteral("\t\n"), b, a); }, "Error\t\t\n\tb\ta"},
        {[=](auto& w) { w.Send(QStringLiteral(u"\u00e4\u20ac\U0001F600")); },
         "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {[=](auto& w) { w.SendError(QString(QChar(0xD83D)), b, a); }, "Error\t?\tb\ta"},
        {[=](auto& w) { w.SendError(a + QChar(0) + b, b, a); }, "Error\ta"},
        {[=](auto& w) { w.Send(none); }, ""},
        {[=](auto& w) { w.Send(QString(3000, u'\u20ac')); },
         QByteArray("\xE2\x82\xAC").repeated(3000)}};
    TestWriter writer(QStringLiteral("M"));
    for (const auto& [send, expected] : cases) {
        send(writer);
        send(writer); // the second may find the buffers of the first
        const QList<QByteArray> lines = takeLines();
        QCOMPARE(lines.size(), 2);
        for (const QByteArray& line : lines)
            QCOMPARE(line.split('\t').mid(4).join('\t'), "M\t" + expected);
    }

    CLogWriter unnamed;
    QCOMPARE(unnamed.GetModuleName(), QStringLiteral("Module Unknown"));
    QCOMPARE(CLogTracer().GetModuleName(), QStringLiteral("Module Unknown"));
    QCOMPARE(unnamed.GetStationName(), QSysInfo::machineHostName());
    CLogWriter copy(unnamed);
    unnamed.SetModuleName(QStringLiteral("\u00fc"));
    copy.SendEvent(none, none, none);
    copy = unnamed;
    copy.SendEvent(none, none, none);
    const QList<QByteArray> lines = takeLines();
    QCOMPARE(lines[0].split('\t')[4], QByteArray("Module Unknown"));
    QCOMPARE(lines[1].split('\t')[4], QByteArray("\xC3\xBC"));
}

void tst_LogWriter::dataBlocks()
{
    CLogWriter writer(QStringLiteral("M"));
    CLogTracer tracer;
    tracer.SetModuleName(QStringLiteral("T"));
    ILogTracer& asTracer = tracer;
    QVERIFY(asTracer.IsOpen());
    TestData data;
    QVERIFY(!data.GetXMLMode());
    data.SetXMLMode(true);
    QVERIFY(TestData(data).GetXMLMode());
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

    CLiveLogReader reader;
    const QString line = QStringLiteral("any\tline \u20ac");
    reader.SendLikeItIs(line);
    for (const QByteArray& expected : {line.toUtf8() + '\0', QByteArray()}) {
        char* start = nullptr;
        long length = 0;
        reader.GetBuffer(&start, &length);
        QCOMPARE(QByteArray(start, static_cast<int>(length)), expected);
        reader.ReleaseBuffer();
    }
    QCOMPARE(m_owner->lines(1).size(), 1u);
    QCOMPARE(m_owner->GetIndex(), index);

    m_owner.reset();
    QVERIFY(!asTracer.IsOpen() && writer.IsOpen());
    init(); // a successor
    QVERIFY(asTracer.IsOpen());
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

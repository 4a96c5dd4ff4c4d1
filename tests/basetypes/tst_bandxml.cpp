#include <VLBase/basetypes/gsm.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/ilogtracer.h>

#include <QDomDocument>
#include <QDomElement>
#include <QtTest>

#include <memory>

namespace {

QString toXml(const Band& band)
{
    QDomDocument doc;
    QDomElement root = doc.createElement(QStringLiteral("Band"));
    doc.appendChild(root);
    band.Save(doc, root);
    return doc.toString(-1);
}

/// Reads what stands between the tags of a band.
bool readInto(Band& band, const QString& xml)
{
    QDomDocument doc;
    if (!doc.setContent(xml))
        return false;
    QDomElement root = doc.documentElement();
    band.Read(doc, root);
    return true;
}

class Collector : public ILogTracer
{
public:
    explicit Collector(QStringList& lines)
        : m_lines(lines)
    {
    }
    void SendDataTrace(QString text) override { m_lines.append(text); }
    void ReportException(QString text) override { m_lines.append(text); }
    bool IsOpen() override { return true; }

private:
    QStringList& m_lines;
};

} // namespace

class tst_BandXml : public QObject
{
    Q_OBJECT

private slots:
    void writtenText_data();
    void writtenText();
    void roundTrip_data();
    void roundTrip();
    void readText_data();
    void readText();
    void keepsWhatIsNotRead();
    void brokenChildIsTraced();
    void deepNesting();
};

void tst_BandXml::writtenText_data()
{
    QTest::addColumn<Band*>("band");
    QTest::addColumn<QString>("expected");
    const auto row = [this](const char* name, const Band& band, const char* expected) {
        auto* copy = new Band(band);
        copy->setParent(this);
        QTest::newRow(name) << copy << QString::fromUtf8(expected);
    };
    row("simple", Band(QStringLiteral("Air & sea <1>"), 25e3, 5e3, true),
        "<Band><Name>Air &amp; sea &lt;1></Name><Channelspacing>25000</Channelspacing>"
        "<Type>Simple</Type><Offset>5000</Offset><UseRaster>1</UseRaster></Band>");
    row("twenty digits of the spacing, six of the offset",
        Band(QStringLiteral("\u00b5"), 8333.1, 12'345'678.9, false),
        "<Band><Name>\u00b5</Name><Channelspacing>8333.1000000000003638</Channelspacing>"
        "<Type>Simple</Type><Offset>1.23457e+07</Offset><UseRaster>0</UseRaster></Band>");
    row("GSM", Band(QStringLiteral("mine"), 200e3, 935.2e6, 1, 4294967295UL, 7, false),
        "<Band><Name>mine</Name><Channelspacing>200000</Channelspacing><Type>GSM</Type>"
        "<StartChannel>1</StartChannel><StopChannel>4294967295</StopChannel>"
        "<StartFrequency>935200000.000000</StartFrequency></Band>");
    row("a band of the plan is its name", GSM().GetBand(GSM::GSM1800Down),
        "<Band><Name>GSM1800 Down</Name></Band>");
}

void tst_BandXml::writtenText()
{
    QFETCH(Band*, band);
    QTEST(toXml(*band).trimmed(), "expected");
}

void tst_BandXml::roundTrip_data()
{
    QTest::addColumn<bool>("gsm");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<double>("start");
    for (const double spacing :
         {1.0, 0.1, 12'500.5, 1.0 / 3.0, 1e15, 5e-324, 1.7976931348623157e308})
        for (const double start : {0.0, 5e3, 1e5, 0.5})
            for (const bool gsm : {false, true})
                QTest::addRow("%s %g from %g", gsm ? "GSM" : "simple", spacing, start)
                    << gsm << spacing << start;
}

void tst_BandXml::roundTrip()
{
    QFETCH(bool, gsm);
    QFETCH(double, spacing);
    QFETCH(double, start);
    const QString name = QStringLiteral(" \u00fc]]> \"'&\u4e2d ");
    const Band written =
        gsm ? Band(name, spacing, start, 512, 885, 512, false) : Band(name, spacing, start, false);
    // Sub-bands are not kept, so the reader begins with the same ones.
    Band read = written;
    QVERIFY(
        readInto(read, QStringLiteral("<b><Name>x</Name><Channelspacing>5</Channelspacing>"
                                      "<StartChannel>9</StartChannel><StopChannel>9</StopChannel>"
                                      "<Offset>9</Offset><UseRaster>1</UseRaster>"
                                      "<StartFrequency>9</StartFrequency></b>")));
    QVERIFY(read != written);
    read.SetOffset(0.0);
    read.SetStartFreq(0.0);
    if (!gsm) {
        read.SetStartChannel(0);
        read.SetStopChannel(0);
        read.SetChannelCalculationFactor(0);
    } else {
        read.SetUseRaster(true);
    }
    QVERIFY(readInto(read, toXml(written)));
    QCOMPARE(toXml(read), toXml(written));
    QVERIFY(read == written);
}

void tst_BandXml::readText_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("expected"); // name, spacing, type, channels, factor, start, raster
    const auto row = [](const char* name, const char* xml, const char* expected) {
        QTest::newRow(name) << QString::fromUtf8(xml) << QString::fromUtf8(expected);
    };
    row("nothing", "", "|10000|0|0-0|0|0|1");
    row("spacing of 0", "<Channelspacing>0</Channelspacing>", "|10000|0|0-0|0|0|1");
    row("spacing without a number", "<Channelspacing>wide</Channelspacing>", "|10000|0|0-0|0|0|1");
    row("spacing of another kind", "<Channelspacing> 1.25e4 </Channelspacing>",
        "|12500|0|0-0|0|0|1");
    row("any other type is GSM", "<Type>simple</Type>", "|10000|1|0-0|0|0|1");
    row("the start channel is the factor", "<StartChannel>512</StartChannel>",
        "|10000|0|512-0|512|0|1");
    row("wrong numbers are 0",
        "<StartChannel>4294967296</StartChannel><StopChannel>-1</StopChannel>"
        "<StartFrequency>0x10</StartFrequency><UseRaster>true</UseRaster>",
        "|10000|0|0-0|0|0|0");
    row("huge numbers",
        "<StopChannel>99999999999999999999</StopChannel><StartFrequency>1e400</StartFrequency>",
        "|10000|0|0-0|0|inf|1");
    row("the last of two counts", "<Name>a</Name><Name>b</Name>", "b|10000|0|0-0|0|0|1");
    row("unknown elements", "<Job><Name>no</Name></Job><name>no</name><Name>yes</Name>",
        "yes|10000|0|0-0|0|0|1");
    row("text of nested elements", "<Name>a<i>b<u>c</u></i><!-- no --><![CDATA[<d>]]>e</Name>",
        "abc<d>e|10000|0|0-0|0|0|1");
    row("empty elements", "<Name/><UseRaster/>", "|10000|0|0-0|0|0|0");
    row("a comment ends it", "<Name>a</Name><!-- here --><Name>b</Name>", "a|10000|0|0-0|0|0|1");
    row("text ends it", "<Name>a</Name>here<Name>b</Name>", "a|10000|0|0-0|0|0|1");
}

void tst_BandXml::readText()
{
    QFETCH(QString, xml);
    Band band;
    QVERIFY(readInto(band, QStringLiteral("<Band>%1</Band>").arg(xml)));
    const QString read = QStringLiteral("%1|%2|%3|%4-%5|%6|%7|%8")
                             .arg(band.GetName())
                             .arg(band.GetStepWidth())
                             .arg(int{band.GetType()})
                             .arg(band.GetStartChannel())
                             .arg(band.GetStopChannel())
                             .arg(band.GetChannelCalculationFactor())
                             .arg(band.GetStartFreq())
                             .arg(int{band.GetUseRaster()});
    QTEST(read, "expected");
}

void tst_BandXml::keepsWhatIsNotRead()
{
    Band band = GSM().GetBand(GSM::GSM900Up);
    band.setVisible(false);
    const Band before = band;
    QDomDocument doc;
    QDomElement none;
    band.Read(doc, none);
    QCOMPARE(band, before);
    QVERIFY(readInto(band, QStringLiteral("<b><StartChannel>1</StartChannel></b>")));
    QVERIFY(band.isSystem() && !band.isVisible());
    QVERIFY(band.IsValidChannel(0) && !band.IsValidChannel(200)); // the sub-bands
}

void tst_BandXml::brokenChildIsTraced()
{
    QCoreApplication::processEvents(); // traces of the tests before
    QStringList lines;
    const QString trace = QStringLiteral("error loading job.");
    const QString broken = QStringLiteral("<b><Name>a</Name><!-- --></b>");
    ErrorHandler::SetLogTracer(std::make_unique<Collector>(lines));
    Band band;

    ErrorHandler::Interface()->SetMessageMask(0xFF & ~0x20);
    QVERIFY(readInto(band, broken));
    QCoreApplication::processEvents();
    QCOMPARE(lines.filter(trace), QStringList());

    ErrorHandler::Interface()->SetMessageMask(0x20);
    QVERIFY(readInto(band, broken));
    QVERIFY(readInto(band, QStringLiteral("<b><Name>whole</Name></b>")));
    QCoreApplication::processEvents();
    ErrorHandler::SetLogTracer(nullptr);
    const QStringList traces = lines.filter(trace);
    QCOMPARE(traces.size(), 1);
    for (const char* part : {"basetypes/band", "321"})
        QVERIFY2(traces.first().contains(QLatin1String(part)), qPrintable(traces.first()));
}

void tst_BandXml::deepNesting()
{
    constexpr int depth = 10'000;
    QDomDocument doc;
    QDomElement root = doc.createElement(QStringLiteral("b"));
    QDomElement inner = doc.createElement(QStringLiteral("Name"));
    root.appendChild(inner);
    for (int i = 0; i < depth; ++i) {
        inner.appendChild(doc.createTextNode(QStringLiteral("a")));
        inner = inner.appendChild(doc.createElement(QStringLiteral("n"))).toElement();
    }
    Band band;
    band.Read(doc, root);
    QCOMPARE(band.GetName().size(), depth);
}

QTEST_GUILESS_MAIN(tst_BandXml)
#include "tst_bandxml.moc"

#include "tests/errorhandling/recordingtracer.h"

#include <VLBase/basetypes/gsm.h>
#include <VLBase/errorhandling/errorhandler.h>

#include <QDomDocument>
#include <QtTest>

#include <limits>
#include <memory>

namespace {

/// What stands between the tags of a saved band.
QString toXml(const Band& band)
{
    QDomDocument doc;
    QDomElement root = doc.createElement(QStringLiteral("b"));
    doc.appendChild(root);
    band.Save(doc, root);
    return doc.toString(-1).trimmed().mid(3).chopped(4);
}

void readInto(Band& band, const QString& xml)
{
    QDomDocument doc;
    QVERIFY2(doc.setContent(QStringLiteral("<b>%1</b>").arg(xml)), qPrintable(xml));
    QDomElement root = doc.documentElement();
    band.Read(doc, root);
}

} // namespace

class tst_BandXml : public QObject
{
    Q_OBJECT

private slots:
    void writtenText()
    {
        const QString name = QStringLiteral("Air & \u00b5 <1>");
        const std::pair<Band, const char*> cases[] = {
            {Band(name, 25e3, 5e3, true),
             "<Name>Air &amp; \u00b5 &lt;1></Name><Channelspacing>25000</Channelspacing>"
             "<Type>Simple</Type><Offset>5000</Offset><UseRaster>1</UseRaster>"},
            // Twenty digits of the spacing, six of the offset.
            {Band(QString(), 8333.1, 12'345'678.9, false),
             "<Name></Name><Channelspacing>8333.1000000000003638</Channelspacing>"
             "<Type>Simple</Type><Offset>1.23457e+07</Offset><UseRaster>0</UseRaster>"},
            {Band(QString(), 200e3, 935.2e6, 1, 4294967295UL, 7, false),
             "<Name></Name><Channelspacing>200000</Channelspacing><Type>GSM</Type>"
             "<StartChannel>1</StartChannel><StopChannel>4294967295</StopChannel>"
             "<StartFrequency>935200000.000000</StartFrequency>"},
            {GSM().GetBand(GSM::GSM1800Down), "<Name>GSM1800 Down</Name>"},
        };
        for (const auto& [band, text] : cases)
            QCOMPARE(toXml(band), QString::fromUtf8(text));
    }

    void roundTrip()
    {
        const QString name = QStringLiteral(" \u00fc]]> \"'&\u4e2d ");
        for (const double spacing :
             {0.1, 1.0 / 3.0, 1e15, 5e-324, std::numeric_limits<double>::max()}) {
            for (const Band& written : {Band(name, spacing, 5e8, 512, 885, 512, false),
                                        Band(name, spacing, 0.5, false)}) {
                Band read = written; // the sub-bands are not written
                readInto(read, QStringLiteral("<Name/><Channelspacing>7</Channelspacing>"
                                              "<StartChannel>9</StartChannel><Offset>9</Offset>"
                                              "<StopChannel>9</StopChannel><UseRaster>1</UseRaster>"
                                              "<StartFrequency>9</StartFrequency>"));
                QVERIFY(read != written);
                readInto(read, toXml(written));
                QCOMPARE(toXml(read), toXml(written));
                QCOMPARE(read.GetChannelCalculationFactor(), written.GetGSM() ? 512UL : 9UL);
            }
        }
    }

    // One band's name must not cost the others their document.
    void namesComeBackOrAreRefused()
    {
        const QString comeBack[] = {u"  "_qs, u"\t\n"_qs, u"\u00a0"_qs, u"\r\na\r"_qs,
                                    u"\u007f\U0001F4E1"_qs};
        const QString refused[] = {u"a\u0001"_qs,          QString(QChar()),       u" \r"_qs,
                                   QString(QChar(0xD800)), QString(QChar(0xDC00)), u"\uFFFE"_qs};
        for (const int indent : {-1, 4}) {
            QDomDocument doc;
            QDomElement root = doc.createElement(QStringLiteral("b"));
            doc.appendChild(root);
            const auto save = [&](const QString& name) {
                QDomElement parent = doc.createElement(QStringLiteral("band"));
                Band(name, 1.0, 0.0, true).Save(doc, parent);
                return parent.hasChildNodes() && !root.appendChild(parent).isNull();
            };
            for (const QString& name : comeBack)
                QVERIFY(save(name));
            for (const QString& name : refused)
                QVERIFY2(!save(name), qPrintable(name));
            QDomDocument read;
            QVERIFY(read.setContent(doc.toByteArray(indent)));
            QDomElement element = read.documentElement().firstChildElement();
            for (const QString& name : comeBack) {
                Band band;
                band.Read(read, element);
                QCOMPARE(band.GetName(), name);
                element = element.nextSiblingElement();
            }
        }
    }

    void readText()
    {
        // Expected: name, spacing, type, channels, factor, start, raster.
        const std::pair<const char*, const char*> cases[] = {
            {"<Channelspacing>0</Channelspacing>", "|10000|0|0-0|0|0|1"},
            {"<Channelspacing>wide</Channelspacing>", "|10000|0|0-0|0|0|1"},
            {"<Channelspacing> 1.25e4 </Channelspacing>", "|12500|0|0-0|0|0|1"},
            {"<Type>simple</Type><StartChannel>512</StartChannel>", "|10000|1|512-0|512|0|1"},
            {"<StartChannel>4294967296</StartChannel><StopChannel>-1</StopChannel>"
             "<StartFrequency>0x10</StartFrequency><UseRaster>true</UseRaster>",
             "|10000|0|0-0|0|0|0"},
            {"<StopChannel>99999999999999999999</StopChannel>"
             "<StartFrequency>1e400</StartFrequency>",
             "|10000|0|0-0|0|inf|1"},
            {"<Job><Name>no</Name></Job><name>no</name><UseRaster/>", "|10000|0|0-0|0|0|0"},
            {"<Name>a<i>b<u>c</u></i><!-- no --><![CDATA[<d>]]>e</Name>",
             "abc<d>e|10000|0|0-0|0|0|1"},
            {"<Name>a</Name><!-- ends it --><Name>b</Name>", "a|10000|0|0-0|0|0|1"},
            {"<Name>a</Name>ends it<Name>b</Name>", "a|10000|0|0-0|0|0|1"},
        };
        for (const auto& [xml, expected] : cases) {
            Band band;
            readInto(band, QString::fromUtf8(xml));
            const QString read = QStringLiteral("%1|%2|%3|%4-%5|%6|%7|%8")
                                     .arg(band.GetName(), QString::number(band.GetStepWidth()))
                                     .arg(int{band.GetType()})
                                     .arg(band.GetStartChannel())
                                     .arg(band.GetStopChannel())
                                     .arg(band.GetChannelCalculationFactor())
                                     .arg(band.GetStartFreq())
                                     .arg(int{band.GetUseRaster()});
            QCOMPARE(read, QString::fromUtf8(expected));
        }
    }

    void brokenChildIsTraced()
    {
        QCoreApplication::processEvents(); // traces of the tests before
        static TracerLog log;              // outlives a tracer that a failure leaves installed
        ErrorHandler::SetLogTracer(std::make_unique<RecordingTracer>(log));
        for (const unsigned mask : {0xFFU & ~0x20U, 0x20U}) {
            log.sent.clear();
            ErrorHandler::Interface()->SetMessageMask(mask);
            Band band;
            readInto(band, QStringLiteral("<Name>a</Name><!-- -->"));
            readInto(band, QStringLiteral("<Name>whole</Name>"));
            QCoreApplication::processEvents();
            const QStringList traces = log.sent.filter(QStringLiteral("error loading job."))
                                           .filter(QStringLiteral("basetypes/band"))
                                           .filter(QStringLiteral("321"));
            QCOMPARE(traces.size(), mask == 0x20 ? 1 : 0);
        }
        ErrorHandler::SetLogTracer(nullptr);
    }

    void deepNesting()
    {
        QDomDocument doc;
        QDomElement root = doc.createElement(QStringLiteral("b"));
        QDomNode inner = root.appendChild(doc.createElement(QStringLiteral("Name")));
        for (int i = 0; i < 10'000; ++i) {
            inner.appendChild(doc.createTextNode(QStringLiteral("a")));
            inner = inner.appendChild(doc.createElement(QStringLiteral("n")));
        }
        Band band = GSM().GetBand(GSM::GSM900Up);
        band.setVisible(false);
        band.Read(doc, root);
        root.clear();
        band.Read(doc, root); // null
        QCOMPARE(band.GetName().size(), 10'000);
        // What is not read stays, the sub-bands among it.
        QVERIFY(band.isSystem() && !band.isVisible());
        QVERIFY(band.IsValidChannel(0) && !band.IsValidChannel(200));
    }
};

QTEST_GUILESS_MAIN(tst_BandXml)
#include "tst_bandxml.moc"

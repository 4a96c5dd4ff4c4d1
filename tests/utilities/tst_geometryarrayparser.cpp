#include <VLBase/utilities/geometryarrayparser.h>

#include <QMainWindow>
#include <QtTest>

namespace {

// A window of 640 x 480 at (100, 80) on the second screen, maximized; its frame is 4 wide and its
// title 24 high.
const QByteArray recordHex("01d9d0cb"                         // magic
                           "00010002"                         // versions
                           "0000006000000038000002e700000233" // frame: 96, 56 to 743, 563
                           "0000006400000050000002e30000022f" // normal: 100, 80 to 739, 559
                           "000000010100");                   // screen, maximized, full screen
const QByteArray record = QByteArray::fromHex(recordHex);

QByteArray patched(qsizetype position, const char* hex)
{
    const QByteArray patch = QByteArray::fromHex(hex);
    return QByteArray(record).replace(position, patch.size(), patch);
}

QVariantList fieldsOf(const GeometryArrayParser& parser)
{
    return {parser.isValid(),       parser.majorVersion(),   parser.minorVersion(),
            parser.frameGeometry(), parser.normalGeometry(), parser.screenNumber(),
            parser.maximized(),     parser.fullScreen()};
}

const QVariantList freshFields{false, 0, 0, QRect(), QRect(), -1, 0, 0};
const QVariantList recordFields{
    true, 1, 2, QRect(QPoint(96, 56), QPoint(743, 563)), QRect(100, 80, 640, 480), 1, 1, 0};

} // namespace

class GeometryArrayParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsHexTexts()
    {
        const QString hex = QString::fromLatin1(recordHex);
        const QString spaced = u" \n%1 %2\t"_qs.arg(hex.left(10), hex.mid(10));
        // An odd text lacks the leading zero of its first byte.
        for (const QString& text :
             {hex, hex.toUpper(), spaced, u'\u20ac' + hex, hex.mid(1), hex + u"ff"_qs})
            QCOMPARE(fieldsOf(GeometryArrayParser(text)), recordFields);
        QCOMPARE(fieldsOf(GeometryArrayParser(recordHex.constData())), recordFields);
        GeometryArrayParser parser;
        QVERIFY(parser.setHexString(hex));
        QCOMPARE(fieldsOf(parser), recordFields);
        for (const QString& text : {QString(hex + u'0'), QString(), u"geometry"_qs})
            QCOMPARE(fieldsOf(GeometryArrayParser(text)), freshFields);
    }

    void leavesFieldsOfWhatIsNoRecord()
    {
        const std::tuple<QByteArray, int, int> cases[] = {
            {QByteArray(), 1, 2},           {record.left(3), 1, 2},
            {patched(0, "01d9d0cc"), 1, 2}, {patched(0, "cbd0d901"), 1, 2},
            {patched(4, "00020007"), 2, 7}, {patched(4, "00000007"), 0, 7},
            {record.left(4), 0, 0},
        };
        for (const auto& [bytes, majorVersion, minorVersion] : cases) {
            GeometryArrayParser parser(record);
            QVERIFY(!parser.setGeometryArray(bytes));
            QVariantList expected = recordFields;
            expected.replace(0, false);
            expected.replace(1, majorVersion);
            expected.replace(2, minorVersion);
            QCOMPARE(fieldsOf(parser), expected);
        }
    }

    void extremeAndMissingValues()
    {
        GeometryArrayParser parser(patched(8, "ffffff80ffffffff"));
        QCOMPARE(parser.frameGeometry().topLeft(), QPoint(-128, -1));
        GeometryArrayParser copy(parser);
        QVERIFY(copy.setGeometryArray(patched(40, "ffffffff02ff").left(45)));
        QVERIFY(copy.screenNumber() == -1 && copy.maximized() == 2 && copy.fullScreen() == 0);
        QCOMPARE(parser.screenNumber(), 1);
        parser = copy;
        QCOMPARE(fieldsOf(parser), fieldsOf(copy));
        QVERIFY(copy.setGeometryArray(record.left(22))); // a number whole or not at all
        QCOMPARE(copy.frameGeometry(), QRect(QPoint(96, 56), QPoint(743, 0)));
    }

    // What follows the version of today's widgets begins as ever.
    void recordOfAWidget()
    {
        QMainWindow window;
        window.setGeometry(100, 80, 640, 480);
        window.show();
        QByteArray saved = window.saveGeometry();
        QVERIFY(!GeometryArrayParser(saved).isValid());
        saved[5] = 1;
        const GeometryArrayParser parser(saved);
        QCOMPARE(parser.normalGeometry(), window.normalGeometry());
        QCOMPARE(parser.frameGeometry(), window.frameGeometry());
    }
};

QTEST_MAIN(GeometryArrayParserTest)
#include "tst_geometryarrayparser.moc"

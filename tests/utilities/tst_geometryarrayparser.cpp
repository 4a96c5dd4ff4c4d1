#include <VLBase/utilities/geometryarrayparser.h>

#include <QMainWindow>
#include <QtTest>

namespace {

// A window of 640 x 480 at (100, 80) on the second screen, maximized; its frame is 4 wide and its
// title 24 high.
const QByteArray recordHex("01d9d0cb" // magic
                           "0001"     // major version
                           "0002"     // minor version
                           "00000060" // frame: left 96
                           "00000038" //        top 56
                           "000002e7" //        right 743
                           "00000233" //        bottom 563
                           "00000064" // normal: left 100
                           "00000050" //         top 80
                           "000002e3" //         right 739
                           "0000022f" //         bottom 559
                           "00000001" // screen
                           "01"       // maximized
                           "00");     // not full screen

QByteArray record()
{
    return QByteArray::fromHex(recordHex);
}

QByteArray patched(qsizetype position, const char* hex)
{
    QByteArray bytes = record();
    const QByteArray patch = QByteArray::fromHex(hex);
    return bytes.replace(position, patch.size(), patch);
}

/// All fields, for comparisons.
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
    void readsEveryField();
    void readsHexTexts_data();
    void readsHexTexts();
    void leavesFieldsOfWhatIsNoRecord_data();
    void leavesFieldsOfWhatIsNoRecord();
    void cutShortAtEveryByte();
    void negativePositions();
    void todaysWidgetsTellTheirVersion();
    void copiesAreTheirOwn();
};

void GeometryArrayParserTest::readsEveryField()
{
    QCOMPARE(fieldsOf(GeometryArrayParser()), freshFields);
    QCOMPARE(fieldsOf(GeometryArrayParser(record())), recordFields);
    GeometryArrayParser parser;
    QVERIFY(parser.setGeometryArray(record() + "more bytes behind"));
    QCOMPARE(fieldsOf(parser), recordFields);
    QVERIFY(parser.setGeometryArray(patched(44, "02ff")));
    QCOMPARE(parser.maximized(), 2);
    QCOMPARE(parser.fullScreen(), 255);
}

void GeometryArrayParserTest::readsHexTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");

    const QString hex = QString::fromLatin1(recordHex);
    QString spaced = hex;
    for (qsizetype i = spaced.size() - 2; i > 0; i -= 2)
        spaced.insert(i, u' ');
    QTest::newRow("plain") << hex << true;
    QTest::newRow("upper case") << hex.toUpper() << true;
    QTest::newRow("blanks") << QLatin1Char(' ') + spaced + QLatin1Char('\n') << true;
    QTest::newRow("characters that are none") << QChar(u'\u20ac') + hex << true;
    // An odd text lacks the leading zero of its first byte.
    QTest::newRow("odd length") << hex.mid(1) << true;
    QTest::newRow("shifted") << hex + QLatin1Char('0') << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("no digits") << u"geometry"_qs << false;
}

void GeometryArrayParserTest::readsHexTexts()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    const QVariantList expected = valid ? recordFields : freshFields;
    QCOMPARE(fieldsOf(GeometryArrayParser(text)), expected);
    GeometryArrayParser parser;
    QCOMPARE(parser.setHexString(text), valid);
    QCOMPARE(fieldsOf(parser), expected);
}

void GeometryArrayParserTest::leavesFieldsOfWhatIsNoRecord_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("majorVersion");
    QTest::addColumn<int>("minorVersion");

    QTest::newRow("empty") << QByteArray() << 1 << 2;
    QTest::newRow("three bytes") << record().left(3) << 1 << 2;
    QTest::newRow("wrong magic") << patched(0, "01d9d0cc") << 1 << 2;
    QTest::newRow("other byte order") << patched(0, "cbd0d901") << 1 << 2;
    QTest::newRow("version 2") << patched(4, "00020007") << 2 << 7;
    QTest::newRow("version 0") << patched(4, "00000007") << 0 << 7;
    QTest::newRow("magic alone") << record().left(4) << 0 << 0;
}

void GeometryArrayParserTest::leavesFieldsOfWhatIsNoRecord()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, majorVersion);
    QFETCH(int, minorVersion);
    GeometryArrayParser parser(record());
    QVERIFY(!parser.setGeometryArray(bytes));
    QVariantList expected = recordFields;
    expected[0] = false;
    expected[1] = majorVersion;
    expected[2] = minorVersion;
    QCOMPARE(fieldsOf(parser), expected);
    QVERIFY(parser.setGeometryArray(record()));
}

void GeometryArrayParserTest::cutShortAtEveryByte()
{
    const auto whole = [](qsizetype size, qsizetype end, int value) {
        return size >= end ? value : 0;
    };
    for (qsizetype size = 0; size < record().size(); ++size) {
        const GeometryArrayParser parser(record().left(size));
        QCOMPARE(parser.isValid(), size >= 6);
        QCOMPARE(parser.minorVersion(), whole(size, 8, 2));
        if (size < 6)
            continue;
        const QRect frame(QPoint(whole(size, 12, 96), whole(size, 16, 56)),
                          QPoint(whole(size, 20, 743), whole(size, 24, 563)));
        const QRect normal(QPoint(whole(size, 28, 100), whole(size, 32, 80)),
                           QPoint(whole(size, 36, 739), whole(size, 40, 559)));
        QCOMPARE(parser.frameGeometry(), frame);
        QCOMPARE(parser.normalGeometry(), normal);
        QCOMPARE(parser.screenNumber(), whole(size, 44, 1));
        QCOMPARE(int(parser.maximized()), whole(size, 45, 1));
    }
}

void GeometryArrayParserTest::negativePositions()
{
    const GeometryArrayParser parser(patched(8, "ffffff80ffffffff"));
    QCOMPARE(parser.frameGeometry().topLeft(), QPoint(-128, -1));
    QCOMPARE(GeometryArrayParser(patched(40, "ffffffff")).screenNumber(), -1);
}

void GeometryArrayParserTest::todaysWidgetsTellTheirVersion()
{
    QMainWindow window;
    window.setGeometry(100, 80, 640, 480);
    window.show();
    const QByteArray saved = window.saveGeometry();
    const GeometryArrayParser parser(saved);
    QVERIFY(!parser.isValid());
    QVERIFY(parser.majorVersion() > 1);
    QCOMPARE(parser.frameGeometry(), QRect());
    // What follows their version begins as ever.
    QByteArray aged = saved;
    aged[5] = 1;
    QCOMPARE(GeometryArrayParser(aged).normalGeometry(), window.normalGeometry());
    QCOMPARE(GeometryArrayParser(aged).frameGeometry(), window.frameGeometry());
}

void GeometryArrayParserTest::copiesAreTheirOwn()
{
    GeometryArrayParser parser(record());
    GeometryArrayParser copy(parser);
    copy.setGeometryArray(patched(40, "00000003"));
    QCOMPARE(fieldsOf(parser), recordFields);
    parser = copy;
    QCOMPARE(parser.screenNumber(), 3);
}

QTEST_MAIN(GeometryArrayParserTest)
#include "tst_geometryarrayparser.moc"

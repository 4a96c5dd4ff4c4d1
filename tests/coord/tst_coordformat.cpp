#include <VLBase/coord/coord.h>
#include <VLBase/coord/maskconv.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/messagelist.h>

#include <QApplication>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTest>
#include <QTranslator>

#include <array>

Q_DECLARE_METATYPE(CoordFormat)

namespace {

const Coord stockholm(18.058275, 59.329554);

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

/// Knows one text.
class OneTextTranslator : public QTranslator
{
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        const bool isKnown = latin1(context) == QStringLiteral("QCoreApplication") &&
                             latin1(source) == QStringLiteral("Geo short");
        return isKnown ? QStringLiteral("Geo kurz") : QString();
    }
};

} // namespace

class TestCoordFormat : public QObject
{
    Q_OBJECT

private slots:
    void strings_data();
    void strings();
    void unknownFormats();
    void translatesNames();
    void poursThroughOwnStrings_data();
    void poursThroughOwnStrings();
    void poursPlainTexts_data();
    void poursPlainTexts();
    void keepsPlaceholder();
    void replacesCharacters_data();
    void replacesCharacters();
    void refusesPositionsPastTheMask();
    void assertsWhenAskedTo();
};

// The strings that user interfaces and stored texts rely on, in Latin-1; 0xB0 is the degree sign.
void TestCoordFormat::strings_data()
{
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("printFormat");
    QTest::addColumn<QString>("inputMask");
    QTest::addColumn<QString>("expression");

    const auto row = [](const char* name, CoordFormat format, const char* mask,
                        const char* printFormat, const char* inputMask, const char* expression) {
        QTest::newRow(name) << format << latin1(mask) << latin1(printFormat) << latin1(inputMask)
                            << latin1(expression);
    };
    row("Geo Decimal", CoordFormat::GeoDecimal, "E###.###### N##.######",
        "%c%3.3d%6.6d%c%2.2d%6.6d", ">A999.999999 A99.999999",
        R"(^(E|W)((0\d{2}|1[0-7]\d)\.\d{6}|180.000000)\s(N|S)([0-8]\d\.\d{6}|90.000000)$)");
    for (const CoordFormat format : {CoordFormat::GeoLong, CoordFormat::Sweref99}) {
        row(format == CoordFormat::GeoLong ? "Geo long" : "SWEREF99", format,
            "E###\xB0##'##.## N##\xB0##'##.##", "%c%3.3d%2.2d%2.2d%2.2d%c%2.2d%2.2d%2.2d%2.2d",
            ">A999\xB0"
            "99'99.99 A99\xB0"
            "99'99.99",
            "^(E|W)((0\\d{2}|1[0-7]\\d)\xB0[0-5]\\d'[0-5]\\d\\.\\d{2}|180\xB0"
            "00'00\\.00)\"\\s(N|S)([0-8]\\d\xB0[0-5]\\d'[0-5]\\d\\.\\d{2}|90\xB0"
            "00'00\\.00)\"$");
    }
    row("Geo short", CoordFormat::GeoShort, "E###\xB0##'## N##\xB0##'##",
        "%c%3.3d%2.2d%2.2d%c%2.2d%2.2d%2.2d",
        ">A999\xB0"
        "99'99 A99\xB0"
        "99'99",
        "^(E|W)((0\\d{2}|1[0-7]\\d)\xB0[0-5]\\d'[0-5]\\d|180\xB0"
        "00'00)\\s(N|S)([0-8]\\d\xB0[0-5]\\d'[0-5]\\d|90\xB0"
        "00'00)$");
    row("UTM", CoordFormat::Utm, "##? ####### #######", "%2.2d%c%7.7d%7.7d", ">99A 9999999 9999999",
        R"(^\d{2}([C-H]|[J-N]|[P-X])\s\d{7}\s\d{7}$)");
    row("MGRS", CoordFormat::Mgrs,
        "##?-?"
        "?-#####-#####",
        "%2.2d%c%c%c%5.3d%5.3d", ">99A-AA-999999-999999", R"(^\d{2}\S-\S{2}-\d{6}-\d{6}$)");
    row("RT90", CoordFormat::Rt90, "X#######.### Y#######.###", "%c%7.3d%7.6d%c%7.3d%7.6d",
        ">A9999999.999 A9999999.999", R"(^X\d{7}\.\d{3}\sY\d{7}\.\d{3}$)");
    row("QTH Maidenhead", CoordFormat::QthMaidenhead, "??##??", "%c%c%02d%c%c", ">AA99AA<",
        R"(^\S{2}\d{2}\S{2}$)");
}

void TestCoordFormat::strings()
{
    QFETCH(CoordFormat, format);
    const Coord coord;
    QCOMPARE(getCoordFormatName(format), latin1(QTest::currentDataTag()));
    QTEST(coord.GetMask(format), "mask");
    QTEST(latin1(coord.GetFmt(format)), "printFormat");
    QTEST(coord.getQtMask(format), "inputMask");
    QTEST(coord.getMaskRegExp(format), "expression");
}

void TestCoordFormat::unknownFormats()
{
    const Coord coord;
    for (const int value : {8, -1, 1000000}) {
        const auto format = static_cast<CoordFormat>(value);
        QCOMPARE(getCoordFormatName(format), QString());
        QCOMPARE(getTranslatedCoordFormatName(format), QString());
        QCOMPARE(coord.GetMask(format), coord.GetMask(CoordFormat::GeoLong));
        QCOMPARE(coord.GetFmt(format), coord.GetFmt(CoordFormat::GeoLong));
        QCOMPARE(coord.getQtMask(format), coord.getQtMask(CoordFormat::GeoLong));
        QCOMPARE(coord.getMaskRegExp(format), coord.getMaskRegExp(CoordFormat::GeoLong));
    }
}

void TestCoordFormat::translatesNames()
{
    OneTextTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(getTranslatedCoordFormatName(CoordFormat::GeoShort), QStringLiteral("Geo kurz"));
    QCOMPARE(getTranslatedCoordFormatName(CoordFormat::GeoLong), QStringLiteral("Geo long"));
    QCOMPARE(getCoordFormatName(CoordFormat::GeoShort), QStringLiteral("Geo short"));
    QCoreApplication::removeTranslator(&translator);
}

// A format's own text goes through its display mask, its input mask in a real line edit, and its
// expression. Where these disagree, they do so by design.
void TestCoordFormat::poursThroughOwnStrings_data()
{
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("fitsInputMask");
    QTest::addColumn<bool>("matchesExpression");

    QTest::newRow("Geo Decimal") << CoordFormat::GeoDecimal
                                 << QStringLiteral("E018.058275 N59.329554") << true << true;
    // The expression wants a seconds sign after each value.
    QTest::newRow("Geo long") << CoordFormat::GeoLong
                              << QStringLiteral(u"E018\u00B003'29.79 N59\u00B019'46.39") << true
                              << false;
    QTest::newRow("Geo short") << CoordFormat::GeoShort
                               << QStringLiteral(u"E018\u00B003'30 N59\u00B019'46") << true << true;
    QTest::newRow("UTM") << CoordFormat::Utm << QStringLiteral("34V 0332644 6580445") << true
                         << true;
    // Five digits are shown, six asked for.
    QTest::newRow("MGRS") << CoordFormat::Mgrs << QStringLiteral("34V-CL-32645-80446") << false
                          << false;
    QTest::newRow("RT90") << CoordFormat::Rt90 << QStringLiteral("X6580916.939 Y1628244.083")
                          << true << true;
    QTest::newRow("SWEREF99") << CoordFormat::Sweref99
                              << QStringLiteral(u"E018\u00B003'29.79 N59\u00B019'46.39") << true
                              << false;
    // The input mask turns the last two letters into capitals: ">" at its start holds for all.
    QTest::newRow("QTH Maidenhead")
        << CoordFormat::QthMaidenhead << QStringLiteral("JO99ah") << true << true;
}

void TestCoordFormat::poursThroughOwnStrings()
{
    QFETCH(CoordFormat, format);
    QFETCH(QString, text);
    QFETCH(bool, fitsInputMask);
    QFETCH(bool, matchesExpression);

    QCOMPARE(stockholm.GetString(format), text);
    MaskConverter converter;
    converter.SetMask(stockholm.GetMask(format), '_');
    converter.SetFormattedText(text);
    QCOMPARE(converter.GetText(), stockholm.GetText(format));
    converter.SetText(stockholm.GetText(format));
    QCOMPARE(converter.GetFormattedText(), text);

    QLineEdit edit;
    edit.setInputMask(stockholm.getQtMask(format));
    edit.setText(text);
    QCOMPARE(edit.hasAcceptableInput() && edit.text().compare(text, Qt::CaseInsensitive) == 0,
             fitsInputMask);
    const QRegularExpression expression(stockholm.getMaskRegExp(format));
    QVERIFY(expression.isValid());
    QCOMPARE(expression.match(text).hasMatch(), matchesExpression);
}

void TestCoordFormat::poursPlainTexts_data()
{
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("formatted");

    const auto decimal = QStringLiteral("E###.###### N##.######");
    QTest::newRow("all") << decimal << QStringLiteral("E012345678N12345678")
                         << QStringLiteral("E012.345678 N12.345678");
    QTest::newRow("too short") << decimal << QStringLiteral("E0123")
                               << QStringLiteral("E012.3_____ ___.______");
    QTest::newRow("nothing") << decimal << QString() << QStringLiteral("____.______ ___.______");
    QTest::newRow("surplus") << QStringLiteral("#.#") << QStringLiteral("1234")
                             << QStringLiteral("1.2");
    QTest::newRow("X and Y are input")
        << QStringLiteral("X# Y#") << QStringLiteral("X1Y2") << QStringLiteral("X1 Y2");
    QTest::newRow("empty mask") << QString() << QStringLiteral("12") << QString();
}

void TestCoordFormat::poursPlainTexts()
{
    QFETCH(QString, mask);
    QFETCH(QString, plain);
    MaskConverter converter;
    converter.SetMask(mask, '_');
    QCOMPARE(converter.GetMask(), mask);
    converter.SetText(plain);
    QTEST(converter.GetFormattedText(), "formatted");
    MaskConverter copy;
    copy = converter;
    QCOMPARE(copy.GetText(), converter.GetText());
}

void TestCoordFormat::keepsPlaceholder()
{
    MaskConverter converter;
    converter.SetMask(QStringLiteral("##.#"), '*');
    QCOMPARE(converter.GetFormattedText(), QStringLiteral("__._"));
    QCOMPARE(converter.GetPlaceHolder(), QStringLiteral("_"));
    // An unfilled position gives its placeholder back.
    converter.SetText(QStringLiteral("7"));
    QCOMPARE(converter.GetText(), QStringLiteral("7__"));
    converter.SetFormattedText(QStringLiteral("1"));
    QCOMPARE(converter.GetText(), QStringLiteral("1"));
}

void TestCoordFormat::replacesCharacters_data()
{
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("accepted");
    QTest::addColumn<QString>("refused");
    QTest::addColumn<QString>("stored"); // empty: what was typed

    QTest::newRow("digit") << QStringLiteral("#") << QStringLiteral("0189")
                           << QStringLiteral("a _/:\u00B2") << QString();
    QTest::newRow("letter") << QStringLiteral("?") << QStringLiteral("AZaz")
                            << QStringLiteral("1_@[`{") << QString();
    QTest::newRow("east or west") << QStringLiteral("E") << QStringLiteral("EWew")
                                  << QStringLiteral("NSnsO0") << QString();
    QTest::newRow("north or south")
        << QStringLiteral("N") << QStringLiteral("NSns") << QStringLiteral("EWewO0") << QString();
    QTest::newRow("X") << QStringLiteral("X") << QStringLiteral("Xx1Y ") << QString()
                       << QStringLiteral("X");
    QTest::newRow("Y") << QStringLiteral("Y") << QStringLiteral("Xx1Y ") << QString()
                       << QStringLiteral("Y");
    QTest::newRow("fixed") << QStringLiteral("\u00B0") << QStringLiteral("a1 ") << QString()
                           << QStringLiteral("\u00B0");
}

void TestCoordFormat::replacesCharacters()
{
    QFETCH(QString, mask);
    QFETCH(QString, accepted);
    QFETCH(QString, refused);
    QFETCH(QString, stored);

    MaskConverter converter;
    converter.SetMask(mask, '_');
    QCOMPARE(converter.IsMaskChar(0), QTest::currentDataTag() == QByteArray("fixed"));
    for (const QChar typed : accepted) {
        char result = '!';
        QVERIFY(converter.GetReplacementChar(0, typed.toLatin1(), result));
        QCOMPARE(result, stored.isEmpty() ? typed.toLatin1() : stored.front().toLatin1());
    }
    for (const QChar typed : refused) {
        char result = '!';
        QVERIFY(!converter.GetReplacementChar(0, typed.toLatin1(), result));
        QCOMPARE(result, '!');
    }
}

void TestCoordFormat::refusesPositionsPastTheMask()
{
    MaskConverter converter;
    converter.SetMask(QStringLiteral("##"), '_');
    char result = '!';
    for (const unsigned int position : {2U, 3U, 0xFFFFFFFFU}) {
        QVERIFY(!converter.GetReplacementChar(position, '1', result));
        QVERIFY(converter.IsMaskChar(position));
    }
    QCOMPARE(result, '!');
}

void TestCoordFormat::assertsWhenAskedTo()
{
    ErrorHandler& handler = ErrorHandler::Instance();
    handler.TurnLogFileOff();
    const auto countReports = [&handler] {
        int count = 0;
        bool atEnd = false;
        handler.InitGetNextMessage(atEnd, 0);
        for (QString text = handler.GetNextMessage(atEnd); !atEnd;
             text = handler.GetNextMessage(atEnd)) {
            if (text.contains(QStringLiteral("ASSERTION FAILED (nPos < unsigned "
                                             "int(m_strMaskText.length()))@coord/maskconv")))
                ++count;
        }
        return count;
    };

    MaskConverter converter;
    converter.SetMask(QStringLiteral("#.#"), '_');
    const int before = countReports();
    converter.IsMaskChar(3);
    QCOMPARE(countReports(), before);

    handler.SetMessageMask(2, true);
    converter.SetText(QStringLiteral("123456"));
    converter.GetText();
    converter.IsMaskChar(2);
    QCOMPARE(countReports(), before);
    converter.IsMaskChar(3);
    QCOMPARE(countReports(), before + 1);
    converter.SetFormattedText(QString(10000, u'1'));
    QCOMPARE(converter.GetText(), QStringLiteral("11"));
    QCOMPARE(countReports(), before + 2);
    handler.SetMessageMask(2, false);
}

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    TestCoordFormat test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_coordformat.moc"

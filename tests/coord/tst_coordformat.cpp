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

namespace {

const Coord stockholm(18.058275, 59.329554);

QString utf8(const char* text)
{
    return QString::fromUtf8(text);
}

/// Knows one text.
class OneTextTranslator : public QTranslator
{
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        const bool isKnown = utf8(context) == QStringLiteral("QCoreApplication") &&
                             utf8(source) == QStringLiteral("Geo short");
        return isKnown ? QStringLiteral("Geo kurz") : QString();
    }
};

} // namespace

class TestCoordFormat : public QObject
{
    Q_OBJECT

private slots:
    // The strings that user interfaces and stored texts rely on.
    void strings()
    {
        const char longMask[] = "E###°##'##.## N##°##'##.##";
        const char longPrint[] = "%c%3.3d%2.2d%2.2d%2.2d%c%2.2d%2.2d%2.2d%2.2d";
        const char longInput[] = ">A999°99'99.99 A99°99'99.99";
        const char longExpression[] =
            "^(E|W)((0\\d{2}|1[0-7]\\d)°[0-5]\\d'[0-5]\\d\\.\\d{2}|180°00'00\\.00)\"\\s"
            "(N|S)([0-8]\\d°[0-5]\\d'[0-5]\\d\\.\\d{2}|90°00'00\\.00)\"$";
        // Name, display mask, print format, input mask, expression.
        const std::array<const char*, 5> rows[] = {
            {"Geo Decimal", "E###.###### N##.######", "%c%3.3d%6.6d%c%2.2d%6.6d",
             ">A999.999999 A99.999999",
             R"(^(E|W)((0\d{2}|1[0-7]\d)\.\d{6}|180.000000)\s(N|S)([0-8]\d\.\d{6}|90.000000)$)"},
            {"Geo long", longMask, longPrint, longInput, longExpression},
            {"Geo short", "E###°##'## N##°##'##", "%c%3.3d%2.2d%2.2d%c%2.2d%2.2d%2.2d",
             ">A999°99'99 A99°99'99",
             R"(^(E|W)((0\d{2}|1[0-7]\d)°[0-5]\d'[0-5]\d|180°00'00)\s)"
             R"((N|S)([0-8]\d°[0-5]\d'[0-5]\d|90°00'00)$)"},
            {"UTM", "##? ####### #######", "%2.2d%c%7.7d%7.7d", ">99A 9999999 9999999",
             R"(^\d{2}([C-H]|[J-N]|[P-X])\s\d{7}\s\d{7}$)"},
            {"MGRS",
             "##?-?"
             "?-#####-#####",
             "%2.2d%c%c%c%5.3d%5.3d", ">99A-AA-999999-999999", R"(^\d{2}\S-\S{2}-\d{6}-\d{6}$)"},
            {"RT90", "X#######.### Y#######.###", "%c%7.3d%7.6d%c%7.3d%7.6d",
             ">A9999999.999 A9999999.999", R"(^X\d{7}\.\d{3}\sY\d{7}\.\d{3}$)"},
            {"SWEREF99", longMask, longPrint, longInput, longExpression},
            {"QTH Maidenhead", "??##??", "%c%c%02d%c%c", ">AA99AA<", R"(^\S{2}\d{2}\S{2}$)"},
            {"", longMask, longPrint, longInput, longExpression}, // no format
        };
        int value = 0;
        for (const auto& [name, mask, print, input, expression] : rows) {
            const auto format = static_cast<CoordFormat>(value++);
            QCOMPARE(getCoordFormatName(format), utf8(name));
            QCOMPARE(getTranslatedCoordFormatName(format), utf8(name));
            QCOMPARE(stockholm.GetMask(format), utf8(mask));
            QCOMPARE(utf8(stockholm.GetFmt(format)), utf8(print));
            QCOMPARE(stockholm.getQtMask(format), utf8(input));
            QCOMPARE(stockholm.getMaskRegExp(format), utf8(expression));
        }
        const auto negative = static_cast<CoordFormat>(-1);
        QCOMPARE(getCoordFormatName(negative), QString());
        QCOMPARE(stockholm.GetMask(negative), utf8(longMask));

        OneTextTranslator translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        QCOMPARE(getTranslatedCoordFormatName(CoordFormat::GeoShort), QStringLiteral("Geo kurz"));
        QCOMPARE(getCoordFormatName(CoordFormat::GeoShort), QStringLiteral("Geo short"));
    }

    // A format's own text goes through its display mask, its input mask in a real line edit, and
    // its expression. Where these disagree, they do so by design.
    void poursThroughOwnStrings()
    {
        // The text, whether it fits the input mask, whether it matches the expression.
        const std::tuple<QString, bool, bool> formats[] = {
            {u"E018.058275 N59.329554"_qs, true, true},
            // The expression wants a seconds sign after each value.
            {u"E018°03'29.79 N59°19'46.39"_qs, true, false},
            {u"E018°03'30 N59°19'46"_qs, true, true},
            {u"34V 0332644 6580445"_qs, true, true},
            // Five digits are shown, six asked for.
            {u"34V-CL-32645-80446"_qs, false, false},
            {u"X6580916.939 Y1628244.083"_qs, true, true},
            {u"E018°03'29.79 N59°19'46.39"_qs, true, false},
            // The input mask turns the last two letters into capitals: ">" holds for all.
            {u"JO99ah"_qs, true, true},
        };
        int value = 0;
        for (const auto& [text, fitsInputMask, matchesExpression] : formats) {
            const auto format = static_cast<CoordFormat>(value++);
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
            const bool isKept = edit.text().compare(text, Qt::CaseInsensitive) == 0;
            QCOMPARE(edit.hasAcceptableInput() && isKept, fitsInputMask);
            const QRegularExpression expression(stockholm.getMaskRegExp(format));
            QVERIFY(expression.isValid());
            QCOMPARE(expression.match(text).hasMatch(), matchesExpression);
        }
    }

    void poursPlainTexts()
    {
        const QString decimal = u"E###.###### N##.######"_qs;
        const std::tuple<QString, QString, QString, QString> texts[] = {
            // mask, plain, formatted, taken out again
            {decimal, u"E012345678N12345678"_qs, u"E012.345678 N12.345678"_qs,
             u"E012345678N12345678"_qs},
            {decimal, u"E0123"_qs, u"E012.3_____ ___.______"_qs, u"E0123______________"_qs},
            {u"#.#"_qs, u"1234"_qs, u"1.2"_qs, u"12"_qs},
            {u"X# Y#"_qs, QString(), u"__ __"_qs, u"____"_qs},
            {QString(), u"12"_qs, QString(), QString()},
        };
        for (const auto& [mask, plain, formatted, taken] : texts) {
            MaskConverter converter;
            converter.SetMask(mask, '*'); // the placeholder stays
            QCOMPARE(converter.GetMask(), mask);
            QCOMPARE(converter.GetFormattedText().count(u'_'), taken.size());
            converter.SetText(plain);
            QCOMPARE(converter.GetFormattedText(), formatted);
            MaskConverter copy;
            copy = converter;
            QCOMPARE(copy.GetText(), taken);
        }
        QCOMPARE(MaskConverter().GetPlaceHolder(), u"_"_qs);
    }

    void replacesCharacters()
    {
        const std::tuple<char16_t, const char*, const char*, bool> positions[] = {
            // mask character, accepted, refused, whether the mask's own character is stored
            {u'#', "0189", "a _/:\xB2", false}, {u'?', "AZaz", "1_@[`{", false},
            {u'E', "EWew", "NSnsO0", false},    {u'N', "NSns", "EWewO0", false},
            {u'X', "Xx1Y ", "", true},          {u'Y', "Xx1Y ", "", true},
            {u'\u00B0', "a1 ", "", true},
        };
        for (const auto& [mask, accepted, refused, storesMask] : positions) {
            MaskConverter converter;
            converter.SetMask(QString(QChar(mask)), '_');
            QCOMPARE(converter.IsMaskChar(0), mask == u'\u00B0');
            char result = '!';
            for (const char* typed = refused; *typed; ++typed)
                QVERIFY(!converter.GetReplacementChar(0, *typed, result) && result == '!');
            for (const unsigned int position : {1U, 2U, 0xFFFFFFFFU}) {
                QVERIFY(!converter.GetReplacementChar(position, '1', result) && result == '!');
                QVERIFY(converter.IsMaskChar(position));
            }
            for (const char* typed = accepted; *typed; ++typed) {
                QVERIFY(converter.GetReplacementChar(0, *typed, result));
                QCOMPARE(result, storesMask ? static_cast<char>(mask) : *typed);
            }
        }
    }

    void assertsWhenAskedTo()
    {
        ErrorHandler& handler = ErrorHandler::Instance();
        handler.TurnLogFileOff();
        const auto countReports = [&handler] {
            int count = 0;
            bool atEnd = false;
            handler.InitGetNextMessage(atEnd, 0);
            for (QString text = handler.GetNextMessage(atEnd); !atEnd;
                 text = handler.GetNextMessage(atEnd))
                count += text.contains(u"ASSERTION FAILED (nPos < unsigned int("
                                       "m_strMaskText.length()))@coord/maskconv"_qs);
            return count;
        };
        MaskConverter converter;
        converter.SetMask(u"#.#"_qs, '_');
        converter.IsMaskChar(3);
        QCOMPARE(countReports(), 0);

        handler.SetMessageMask(2, true);
        converter.SetText(u"123456"_qs);
        converter.GetText();
        converter.IsMaskChar(2);
        QCOMPARE(countReports(), 0);
        converter.IsMaskChar(3);
        converter.SetFormattedText(QString(10000, u'1')); // one report for all of them
        QCOMPARE(converter.GetText(), u"11"_qs);
        QCOMPARE(countReports(), 2);
        handler.SetMessageMask(2, false);
    }
};

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    TestCoordFormat test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_coordformat.moc"

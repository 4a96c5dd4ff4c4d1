#include "formattable.h"

#include <QtGlobal>

#include <cstddef>

namespace vlbase::coord {
namespace {

#define GEO_LONG_STRINGS                                                                           \
    QStringLiteral(u"E###\u00B0##'##.## N##\u00B0##'##.##"),                                       \
        "%c%3.3d%2.2d%2.2d%2.2d%c%2.2d%2.2d%2.2d%2.2d",                                            \
        QStringLiteral(u">A999\u00B099'99.99 A99\u00B099'99.99"),                                  \
        QStringLiteral(u"^(E|W)((0\\d{2}|1[0-7]\\d)\u00B0[0-5]\\d'[0-5]\\d\\.\\d{2}"               \
                       u"|180\u00B000'00\\.00)\"\\s"                                               \
                       u"(N|S)([0-8]\\d\u00B0[0-5]\\d'[0-5]\\d\\.\\d{2}|90\u00B000'00\\.00)\"$")

// Masks and expressions disagree in places: the expression of the long form demands a seconds sign
// that no mask has, and MGRS has five digits in one pair of strings and six in the other. User
// interfaces and stored texts depend on each as it is.
const std::array<FormatRow, 8>& rows()
{
    static const std::array<FormatRow, 8> table = {{
        {QT_TRANSLATE_NOOP("QCoreApplication", "Geo Decimal"),
         QStringLiteral("E###.###### N##.######"), "%c%3.3d%6.6d%c%2.2d%6.6d",
         QStringLiteral(">A999.999999 A99.999999"),
         QStringLiteral("^(E|W)((0\\d{2}|1[0-7]\\d)\\.\\d{6}|180.000000)\\s"
                        "(N|S)([0-8]\\d\\.\\d{6}|90.000000)$")},
        {QT_TRANSLATE_NOOP("QCoreApplication", "Geo long"), GEO_LONG_STRINGS},
        {QT_TRANSLATE_NOOP("QCoreApplication", "Geo short"),
         QStringLiteral(u"E###\u00B0##'## N##\u00B0##'##"), "%c%3.3d%2.2d%2.2d%c%2.2d%2.2d%2.2d",
         QStringLiteral(u">A999\u00B099'99 A99\u00B099'99"),
         QStringLiteral(u"^(E|W)((0\\d{2}|1[0-7]\\d)\u00B0[0-5]\\d'[0-5]\\d|180\u00B000'00)\\s"
                        u"(N|S)([0-8]\\d\u00B0[0-5]\\d'[0-5]\\d|90\u00B000'00)$")},
        {QT_TRANSLATE_NOOP("QCoreApplication", "UTM"), QStringLiteral("##? ####### #######"),
         "%2.2d%c%7.7d%7.7d", QStringLiteral(">99A 9999999 9999999"),
         QStringLiteral("^\\d{2}([C-H]|[J-N]|[P-X])\\s\\d{7}\\s\\d{7}$")},
        // Two literals, so that no compiler takes the question marks for a trigraph.
        {QT_TRANSLATE_NOOP("QCoreApplication", "MGRS"),
         QStringLiteral("##?-?"
                        "?-#####-#####"),
         "%2.2d%c%c%c%5.3d%5.3d", QStringLiteral(">99A-AA-999999-999999"),
         QStringLiteral("^\\d{2}\\S-\\S{2}-\\d{6}-\\d{6}$")},
        {QT_TRANSLATE_NOOP("QCoreApplication", "RT90"), QStringLiteral("X#######.### Y#######.###"),
         "%c%7.3d%7.6d%c%7.3d%7.6d", QStringLiteral(">A9999999.999 A9999999.999"),
         QStringLiteral("^X\\d{7}\\.\\d{3}\\sY\\d{7}\\.\\d{3}$")},
        {QT_TRANSLATE_NOOP("QCoreApplication", "SWEREF99"), GEO_LONG_STRINGS},
        {QT_TRANSLATE_NOOP("QCoreApplication", "QTH Maidenhead"), QStringLiteral("??##??"),
         "%c%c%02d%c%c", QStringLiteral(">AA99AA<"), QStringLiteral("^\\S{2}\\d{2}\\S{2}$")},
    }};
    return table;
}

#undef GEO_LONG_STRINGS

} // namespace

const FormatRow* findFormat(CoordFormat format)
{
    const auto place = static_cast<std::size_t>(format);
    return place < rows().size() ? &rows()[place] : nullptr;
}

const FormatRow& formatOrGeoLong(CoordFormat format)
{
    const FormatRow* row = findFormat(format);
    return row ? *row : rows()[static_cast<std::size_t>(CoordFormat::GeoLong)];
}

} // namespace vlbase::coord

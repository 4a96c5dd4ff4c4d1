#include "coordtext.h"

#include <VLBase/coord/internal/formattable.h>
#include <VLBase/coord/internal/mask.h>
#include <VLBase/coord/internal/plaintexts.h>

#include <cmath>

namespace vlbase::coord {
namespace {

/// The character in upper case; 0 for one that no plain text holds.
char plainCharacter(QChar typed)
{
    const char16_t code = typed.unicode();
    if (code >= u'a' && code <= u'z')
        return static_cast<char>(code - u'a' + u'A');
    if ((code >= u'A' && code <= u'Z') || (code >= u'0' && code <= u'9'))
        return static_cast<char>(code);
    return 0;
}

qsizetype plainLength(QStringView mask)
{
    qsizetype length = 0;
    for (const QChar character : mask)
        length += isInputCharacter(character.unicode()) ? 1 : 0;
    return length;
}

/// Takes the plain text out of a text that either is one or has the mask's fixed characters.
bool takeOut(QStringView text, QStringView mask, TextBuffer& plain)
{
    const bool isFormatted = text.size() == mask.size();
    if (!isFormatted && text.size() != plainLength(mask))
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isFormatted && !isInputCharacter(mask[i].unicode())) {
            if (text[i] != mask[i])
                return false;
            continue;
        }
        const char character = plainCharacter(text[i]);
        if (!character)
            return false;
        plain.put(character);
    }
    return true;
}

} // namespace

void writePlain(CoordFormat format, GeoPoint position, TextBuffer& text)
{
    if (!(std::abs(position.latitude) <= 90)) {
        text.put(invalidLatitude);
        return;
    }
    if (!(std::abs(position.longitude) <= 180)) {
        text.put(invalidLongitude);
        return;
    }
    switch (format) {
    case CoordFormat::GeoDecimal:
        return writeAngles(AngleForm::Millionths, position, text);
    case CoordFormat::GeoShort:
        return writeAngles(AngleForm::Seconds, position, text);
    case CoordFormat::Utm:
        return writeUtm(position, text);
    case CoordFormat::Mgrs:
        return writeMgrs(position, text);
    case CoordFormat::Rt90:
        return writeRt90(position, text);
    case CoordFormat::QthMaidenhead:
        return writeMaidenhead(position, text);
    case CoordFormat::GeoLong:
    case CoordFormat::Sweref99: // whose positions are those of WGS 84
        break;
    }
    writeAngles(AngleForm::Hundredths, position, text);
}

QString formatted(CoordFormat format, const TextBuffer& plain)
{
    const QString& mask = formatOrGeoLong(format).displayMask;
    QString text(mask.size(), Qt::Uninitialized);
    std::size_t next = 0;
    for (qsizetype i = 0; i < mask.size(); ++i)
        text[i] = isInputCharacter(mask[i].unicode()) ? QLatin1Char(plain[next++]) : mask[i];
    return text;
}

std::optional<GeoPoint> readText(CoordFormat format, QStringView text)
{
    TextBuffer plain;
    if (!takeOut(text, formatOrGeoLong(format).displayMask, plain))
        return std::nullopt;
    switch (format) {
    case CoordFormat::GeoDecimal:
        return readAngles(AngleForm::Millionths, plain);
    case CoordFormat::GeoShort:
        return readAngles(AngleForm::Seconds, plain);
    case CoordFormat::Utm:
        return readUtm(plain);
    case CoordFormat::Mgrs:
        return readMgrs(plain);
    case CoordFormat::Rt90:
        return readRt90(plain);
    case CoordFormat::QthMaidenhead:
        return readMaidenhead(plain);
    case CoordFormat::GeoLong:
    case CoordFormat::Sweref99:
        break;
    }
    return readAngles(AngleForm::Hundredths, plain);
}

} // namespace vlbase::coord

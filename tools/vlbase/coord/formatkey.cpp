#include "formatkey.h"

#include <cstddef>

namespace vlbase::tool::coord {

QLatin1String formatKey(CoordFormat format)
{
    constexpr std::array<const char*, allFormats.size()> keys = {
        "decimal", "long", "short", "utm", "mgrs", "rt90", "sweref99", "maidenhead"};
    return QLatin1String(keys[static_cast<std::size_t>(format)]);
}

QStringList formatKeys()
{
    QStringList keys;
    for (const CoordFormat format : allFormats)
        keys << formatKey(format);
    return keys;
}

std::optional<CoordFormat> formatOfKey(const QString& word)
{
    for (const CoordFormat format : allFormats) {
        if (word.compare(formatKey(format), Qt::CaseInsensitive) == 0 ||
            word.compare(getCoordFormatName(format), Qt::CaseInsensitive) == 0)
            return format;
    }
    return std::nullopt;
}

} // namespace vlbase::tool::coord

#include "coord.h"

#include <VLBase/coord/internal/coordtext.h>
#include <VLBase/coord/internal/formattable.h>
#include <VLBase/coord/maskconv.h>

#include <cmath>

using namespace vlbase::coord;

bool Coord::IsValid() const
{
    return std::abs(m_longitude) <= 180 && std::abs(m_latitude) <= 90;
}

const char* Coord::GetFmt(CoordFormat format) const
{
    return formatOrGeoLong(format).printFormat;
}

const QString Coord::GetMask(CoordFormat format) const
{
    return formatOrGeoLong(format).displayMask;
}

QString Coord::getQtMask(CoordFormat format) const
{
    return formatOrGeoLong(format).inputMask;
}

QString Coord::getMaskRegExp(CoordFormat format) const
{
    return formatOrGeoLong(format).expression;
}

QString Coord::GetString(CoordFormat format) const
{
    QString plain = GetText(format);
    if (plain.startsWith(u'#'))
        return plain;
    MaskConverter converter;
    converter.SetMask(GetMask(format), '_');
    converter.SetText(plain);
    return converter.GetFormattedText();
}

void Coord::SetString(const QString& text, CoordFormat format)
{
    MaskConverter converter;
    converter.SetMask(GetMask(format), '_');
    converter.SetFormattedText(text);
    SetText(converter.GetText(), format);
}

QString Coord::GetText(CoordFormat format) const
{
    TextBuffer text;
    writePlain(format, {m_latitude, m_longitude}, text);
    return text.toString();
}

void Coord::SetText(const QString& text, CoordFormat format)
{
    if (const auto position = readText(format, text)) {
        m_longitude = position->longitude;
        m_latitude = position->latitude;
    }
}

#pragma once

#include <VLBase/coord/coordformat.h>
#include <VLBase/vlbase_export.h>

#include <QString>

/// A position in WGS 84 degrees, longitude (east positive) before latitude (north positive), and
/// its texts.
///
/// A format knows two texts. The plain text is the significant characters ("E012345678N12345678"),
/// the formatted one is what a user sees: the plain text poured into the display mask
/// ("E012.345678 N12.345678"). An unknown format is treated as "Geo long".
class VLBASE_EXPORT Coord
{
public:
    /// The position at zero degrees.
    Coord() = default;
    Coord(double longitude, double latitude)
        : m_longitude(longitude)
        , m_latitude(latitude)
    {
    }

    double GetLongitude() const { return m_longitude; }
    double GetLatitude() const { return m_latitude; }
    void SetLongitude(double longitude) { m_longitude = longitude; }
    void SetLatitude(double latitude) { m_latitude = latitude; }

    /// Whether both values are in their range; NaN is not.
    bool IsValid() const;

    /// The printf format of the plain text's parts, from the hemisphere letter on.
    const char* GetFmt(CoordFormat format) const;
    /// The display mask, see `MaskConverter`.
    const QString GetMask(CoordFormat format) const;
    /// The input mask for a `QLineEdit`. It and the expression do not always agree with the
    /// display mask: MGRS asks for six digits per value where five are shown.
    QString getQtMask(CoordFormat format) const;
    /// The validation expression. Those of "Geo long" and "SWEREF99" demand a seconds sign after
    /// each value, which neither mask has.
    QString getMaskRegExp(CoordFormat format) const;

    /// The position as the user sees it, or what `GetText` says of one that has no text.
    QString GetString(CoordFormat format) const;
    /// Reads what stands at the mask's input positions of `text`; see `SetText`.
    void SetString(const QString& text, CoordFormat format);

    /// The plain text, rounded to its last digit.
    ///
    /// A position that the format cannot express gives a text that begins with "#": "#INVALID
    /// LATITUDE", "#INVALID LONGITUDE", "#LATITUDE OUTSIDE UTM AREA", "#LATITUDE OUTSIDE MGRS
    /// AREA" or "#OUTSIDE RT90 AREA". UTM covers latitudes -80 to 84, MGRS the same without 84
    /// and without 180 east, RT90 latitudes 54 to 70 and longitudes 10 to 25.
    QString GetText(CoordFormat format) const;
    /// Reads a plain or formatted text as the other two functions write them, in any case of
    /// letters. A text that does not parse or names no position leaves this one alone.
    ///
    /// `GetText` of what was read gives the same text. Read are: the nearest double of an angle,
    /// the middle of a UTM or MGRS metre (where it lies across a border, another point of it),
    /// the RT90 position to a fraction of a millimetre, the centre of a Maidenhead square.
    void SetText(const QString& text, CoordFormat format);

    bool operator==(const Coord& other) const
    {
        return m_longitude == other.m_longitude && m_latitude == other.m_latitude;
    }
    bool operator!=(const Coord& other) const { return !(*this == other); }

private:
    double m_longitude = 0;
    double m_latitude = 0;
};

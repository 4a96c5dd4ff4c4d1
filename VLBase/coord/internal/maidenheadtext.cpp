#include "plaintexts.h"

#include <algorithm>
#include <cmath>

namespace vlbase::coord {
namespace {

// A field is 10 squares wide and high, a square 24 subsquares; there are 18 fields on each axis.
constexpr int subsquaresPerSquare = 24;
constexpr int subsquaresPerField = 10 * subsquaresPerSquare;
constexpr int subsquaresPerAxis = 18 * subsquaresPerField;

/// \param degrees from the start of the axis
int subsquareAt(double degrees, int subsquaresPerDegree)
{
    const int subsquare = static_cast<int>(degrees * subsquaresPerDegree);
    return std::min(subsquare, subsquaresPerAxis - 1); // the upper edge
}

char field(int subsquare)
{
    return static_cast<char>('A' + subsquare / subsquaresPerField);
}

char square(int subsquare)
{
    return static_cast<char>('0' + subsquare / subsquaresPerSquare % 10);
}

char lowerSubsquare(int subsquare)
{
    return static_cast<char>('a' + subsquare % subsquaresPerSquare);
}

/// The subsquare of three upper-case characters; nothing when one is out of range.
std::optional<int> subsquareOf(char field, char square, char subsquare)
{
    if (field < 'A' || field > 'R' || square < '0' || square > '9' || subsquare < 'A' ||
        subsquare > 'X')
        return std::nullopt;
    return (field - 'A') * subsquaresPerField + (square - '0') * subsquaresPerSquare + subsquare -
           'A';
}

} // namespace

void writeMaidenhead(GeoPoint position, TextBuffer& text)
{
    const int east = subsquareAt(position.longitude + 180, 12);
    const int north = subsquareAt(position.latitude + 90, 24);
    text.put(field(east));
    text.put(field(north));
    text.put(square(east));
    text.put(square(north));
    text.put(lowerSubsquare(east));
    text.put(lowerSubsquare(north));
}

std::optional<GeoPoint> readMaidenhead(const TextBuffer& text)
{
    const auto east = subsquareOf(text[0], text[2], text[4]);
    const auto north = subsquareOf(text[1], text[3], text[5]);
    if (!east || !north)
        return std::nullopt;
    return GeoPoint{(2 * *north + 1) / 48.0 - 90, (2 * *east + 1) / 24.0 - 180};
}

} // namespace vlbase::coord

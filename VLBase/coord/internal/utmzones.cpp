#include "utmzones.h"

#include <string_view>

namespace vlbase::coord {
namespace {

struct WideZone
{
    long zone;
    LongitudeSpan span;
};

constexpr WideZone norway[] = {{31, {0, 3}}, {32, {3, 12}}};
// Zones 32, 34 and 36 have no width here.
constexpr WideZone svalbard[] = {{31, {0, 9}},   {32, {0, 0}}, {33, {9, 21}}, {34, {0, 0}},
                                 {35, {21, 33}}, {36, {0, 0}}, {37, {33, 42}}};

template <std::size_t count>
std::optional<LongitudeSpan> spanIn(const WideZone (&exceptions)[count], long zone)
{
    for (const WideZone& exception : exceptions) {
        if (exception.zone == zone) {
            if (exception.span.east > exception.span.west)
                return exception.span;
            return std::nullopt;
        }
    }
    return regularSpan(zone);
}

} // namespace

int gridLetterIndex(char letter)
{
    const std::size_t place = std::string_view(gridLetters).find(letter);
    return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

long utmCentralMeridian(GeoPoint position)
{
    const auto [latitude, longitude] = position;
    // Svalbard's rule has no upper bound here.
    if (latitude >= 72 && longitude >= 0 && longitude < 42) {
        if (longitude < 9)
            return 3;
        if (longitude < 21)
            return 15;
        return longitude < 33 ? 27 : 39;
    }
    if (56 <= latitude && latitude < 64 && 3 <= longitude && longitude < 12)
        return 9;
    double sixths = longitude / 6;
    if (sixths < 0)
        sixths -= 1; // so negative multiples of 6 belong to the zone in the west
    return 6 * static_cast<long>(sixths) + 3;
}

char gridBand(double latitude)
{
    const int place = static_cast<int>(latitude / 8 + 13);
    if (place >= 24)
        return 'X';
    return gridLetters[place == 0 ? 0 : place - 1];
}

std::optional<double> southernEdge(char band)
{
    const int place = gridLetterIndex(band);
    if (place < gridLetterIndex('C') || place > gridLetterIndex('Y'))
        return std::nullopt;
    return 8 * place - 96;
}

std::optional<LongitudeSpan> zoneSpan(long zone, double southernEdge)
{
    if (southernEdge == 56)
        return spanIn(norway, zone);
    if (southernEdge >= 72)
        return spanIn(svalbard, zone);
    return regularSpan(zone);
}

} // namespace vlbase::coord

#include "plaintexts.h"

#include <VLBase/coord/internal/gridreference.h>

#include <cmath>

namespace vlbase::coord {
namespace {

constexpr int mgrsOnWgs84 = 4;

} // namespace

void writeMgrs(GeoPoint position, TextBuffer& text)
{
    const GridAnswer answer = gridReferenceOf(position, mgrsOnWgs84);
    if (answer.refusal) {
        text.put(answer.refusal);
        return;
    }
    if (answer.reference.zone < 10)
        text.put('0');
    writeGridReference(answer.reference, text);
}

std::optional<GeoPoint> readMgrs(const TextBuffer& text)
{
    PlainReader reader(text);
    const auto zone = reader.number(2);
    GridReference reference;
    reference.band = reader.character();
    reference.first = reader.character();
    reference.second = reader.character();
    const auto easting = reader.number(5);
    const auto northing = reader.number(5);
    if (!zone || *zone < 1 || *zone > 60 || !easting || !northing)
        return std::nullopt;
    reference.zone = static_cast<int>(*zone);
    reference.easting = static_cast<int>(*easting);
    reference.northing = static_cast<int>(*northing);

    const auto position = positionOf(reference);
    if (!position || !(std::abs(position->longitude) <= 180))
        return std::nullopt;
    // Grid references are read a little more freely, "X" for "Y".
    TextBuffer again;
    writeMgrs(*position, again);
    if (again != text)
        return std::nullopt;
    return position;
}

} // namespace vlbase::coord

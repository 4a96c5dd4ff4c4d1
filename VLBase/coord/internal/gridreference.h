#pragma once

#include <VLBase/coord/internal/points.h>
#include <VLBase/coord/internal/textbuffer.h>

#include <QStringView>

#include <optional>

namespace vlbase::coord {

enum class GridKind { British, Irish, Mgrs };

/// The kind of the references that are made on a projection; nothing when there are none.
std::optional<GridKind> gridKindOf(unsigned code);

/// A lettered grid reference, taken apart.
struct GridReference
{
    GridKind kind = GridKind::Mgrs;
    unsigned code = 4;        // of the projection
    bool alternative = false; // lettering of MGRS rows
    int zone = 0;             // MGRS only
    char band = 0;            // MGRS only
    char first = 0;           // 500 km square or column; none on the Irish grid
    char second = 0;          // 100 km square or row
    int easting = 0;          // metres inside the 100 km square
    int northing = 0;
    int step = 1; // metres that one unit of the last digit stands for
};

/// What a grid knows of a position: its reference, or why there is none.
struct GridAnswer
{
    const char* refusal = nullptr;
    GridReference reference;
};

/// The reference of a position, to one metre.
/// \param projection a negative code selects the alternative lettering
GridAnswer gridReferenceOf(GeoPoint position, int projection);

/// Zone without leading zero, letters and digits without blanks.
void writeGridReference(const GridReference& reference, TextBuffer& text);

/// Takes a typed reference apart. It need not name a square that exists.
std::optional<GridReference> parseGridReference(QStringView text, int projection);

/// A position whose reference begins with the one given: its south-west corner, or the middle of
/// a metre square, as far as that lies inside the zone and band; nothing for squares that the
/// grid does not have.
std::optional<GeoPoint> positionOf(const GridReference& reference);

// --- What reading and writing share

/// Every position is moved by this much before it gets its reference.
constexpr GeoPoint nudged(GeoPoint position)
{
    return {(position.latitude * 1000000 + 1) / 1000000,
            (position.longitude * 100000 + 1) / 100000};
}
constexpr GeoPoint unnudged(GeoPoint position)
{
    return {(position.latitude * 1000000 - 1) / 1000000,
            (position.longitude * 100000 - 1) / 100000};
}

/// The letters of 100 km squares on the national grids, by ten times the easting's digit plus
/// the northing's.
constexpr char nationalLetters[] = "VQLFAVQLFAWRMGBWRMGBXSNHCXSNHCYTOJDYTOJDZUPKEZUPKE"
                                   "VQLFAVQLFAWRMGBWRMGBXSNHCXSNHCYTOJDYTOJDZUPKEZUPKE";

/// The first letters of the British grid: its 500 km squares from the south, west before east.
constexpr char britishLetters[3][2] = {{'S', 'T'}, {'N', 'O'}, {'H', 'J'}};

} // namespace vlbase::coord

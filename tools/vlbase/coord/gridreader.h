#pragma once

#include "recognizer.h"

#include <optional>
#include <string_view>

/// \file
/// Readers of the grids' texts as people write them, each more generous than the library's own.
/// Texts are tidied ones.

namespace vlbase::tool::coord {

/// Zone, band letter or hemisphere, easting and northing, with or without fractions:
/// "33U 389918 5819699".
std::optional<Reading> readUtm(std::string_view text);

/// A reference of 2 to 10 digits, with or without blanks and hyphens: "33U UU 899 196".
std::optional<Reading> readMgrs(std::string_view text);

/// Northing and easting, with or without fractions: "X6580917 Y1628244", and without the letters
/// where they are known to be RT90.
std::optional<Reading> readRt90(std::string_view text, bool lettersMayLack);

} // namespace vlbase::tool::coord

#pragma once

#include <QString>

#include <optional>

namespace vlbase::tool::band {

/// Hertz of a text such as "935.2 MHz", "935200k" or "9.352e8": a number and, unless it is hertz, a
/// unit of which the first letter is enough. None when the text is something else.
std::optional<double> parseFrequency(const QString& text);

/// "935.2 MHz": as many decimals as it takes, and no more.
QString megahertzText(double hertz);

} // namespace vlbase::tool::band

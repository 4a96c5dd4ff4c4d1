#pragma once

#include <QString>

#include <cstdarg>

namespace vlbase {

/// Formats as the wide `printf` family of the Windows runtime does, alike on every platform.
///
/// The runtimes differ in what "%s" means and in what is left of a text that is too long, so this
/// reads the format itself and uses the runtime for single numbers only.
///
/// \param limit the result is cut after so many UTF-16 units, but not between the two halves of a
///     surrogate pair. It also ends at a zero character.
QString formatWide(const QString& format, qsizetype limit, std::va_list arguments);

} // namespace vlbase

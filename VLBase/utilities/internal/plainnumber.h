#pragma once

#include <QString>

class QLocale;

namespace vlbase::utilities {

/// The base in which C writes a whole number of that form: 16 with "0x", 8 with a leading "0",
/// otherwise 10. Sign and digits may be the locale's.
int baseOf(const QString& text, const QLocale& locale);

/// Rewrites a whole number of any base from the spelling of a locale into plain ASCII: digits of
/// the locale or of ASCII become ASCII ones, signs become "+" and "-", group separators go.
/// Separators must stand between digits, the last one before three digits and each other one
/// three digits before the next.
/// \return a null text when that is not possible.
QString plainNumber(const QString& text, const QLocale& locale);

/// Puts "-" and "+" in place of signs that a locale writes with more than one character: a mark
/// of direction goes with them in Arabic, Hebrew and Persian, which QLocale writes but does not
/// read.
QString withPlainSigns(QString text, const QLocale& locale);

} // namespace vlbase::utilities

#pragma once

#include <VLBase/vlbase_export.h>

#include <QLocale>
#include <QString>

/// Reads a number of any built-in type, or a truth value, from text.
namespace NumberHelpers {

/// Reads a number in the spelling of a locale, its digits, signs and group separators included.
///
/// \tparam T `signed char`, `unsigned char`, `short`, `unsigned short`, `int`, `unsigned int`,
///         `long`, `unsigned long`, `qint64`, `quint64`, `float`, `double` or `bool`, and the
///         fixed-width types with them. The two 8-bit types and `bool` do not use the locale.
/// \param ok   may be null; receives whether the text is a number that fits into `T`.
/// \param base of whole numbers: 2 to 36, or 0 to tell it from the text, where "0x" and a leading
///             "0" mean 16 and 8 and all else is 10 ("0b" is nothing). Not used for `float`,
///             `double` and `bool`.
/// \return 0 when `*ok` is false, but an infinity for a `float` or `double` that is too large.
///
/// A truth value is a number, with base 0, or one of "true", "yes", "on", "false", "no", "off" in
/// any case of letters and with blanks around. A number other than 0 and 1 is true with `*ok`
/// false.
template <typename T>
T parse(const QString& text, const QLocale& locale = QLocale(), bool* ok = nullptr,
        int base = 10) = delete;

template <>
VLBASE_EXPORT signed char parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT unsigned char parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT short parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT unsigned short parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <> VLBASE_EXPORT int parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT unsigned int parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT long parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT unsigned long parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT qint64 parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT quint64 parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT float parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT double parse(const QString& text, const QLocale& locale, bool* ok, int base);
template <>
VLBASE_EXPORT bool parse(const QString& text, const QLocale& locale, bool* ok, int base);

} // namespace NumberHelpers

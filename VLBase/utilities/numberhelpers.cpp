#include "numberhelpers.h"

#include <VLBase/utilities/internal/plainnumber.h>

#include <QStringList>

#include <limits>

namespace NumberHelpers {

namespace {

using vlbase::utilities::baseOf;
using vlbase::utilities::plainNumber;
using vlbase::utilities::withPlainSigns;

bool isBase(int base)
{
    return base >= 2 && base <= 36;
}

template <typename T> T finish(T value, bool valid, bool* ok)
{
    if (ok)
        *ok = valid;
    return valid ? value : T{};
}

/// \param ofLocale QLocale's conversion, which knows base 10 only
/// \param ofText   QString's conversion, which knows no locale
template <typename T>
T parseInteger(const QString& text, const QLocale& locale, bool* ok, int base,
               T (QLocale::*ofLocale)(const QString&, bool*) const,
               T (QString::*ofText)(bool*, int) const)
{
    bool valid = false;
    T value{};
    if (base == 0)
        base = baseOf(text, locale);
    if (base == 10)
        value = (locale.*ofLocale)(withPlainSigns(text, locale), &valid);
    else if (isBase(base))
        value = (plainNumber(text, locale).*ofText)(&valid, base);
    return finish(value, valid, ok);
}

/// \param wide QString's 16-bit conversion
template <typename T, typename Wide>
T parseByte(const QString& text, bool* ok, int base, Wide (QString::*wide)(bool*, int) const)
{
    bool valid = false;
    if (base == 0)
        base = baseOf(text, QLocale::c());
    const Wide value = isBase(base) ? (text.*wide)(&valid, base) : Wide{};
    valid =
        valid && value >= std::numeric_limits<T>::min() && value <= std::numeric_limits<T>::max();
    return finish(static_cast<T>(value), valid, ok);
}

bool isOneOf(const QString& word, const QStringList& words)
{
    return words.contains(word, Qt::CaseInsensitive);
}

} // namespace

template <> signed char parse(const QString& text, const QLocale&, bool* ok, int base)
{
    return parseByte<signed char>(text, ok, base, &QString::toShort);
}

template <> unsigned char parse(const QString& text, const QLocale&, bool* ok, int base)
{
    return parseByte<unsigned char>(text, ok, base, &QString::toUShort);
}

template <> short parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<short>(text, locale, ok, base, &QLocale::toShort, &QString::toShort);
}

template <> unsigned short parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<ushort>(text, locale, ok, base, &QLocale::toUShort, &QString::toUShort);
}

template <> int parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<int>(text, locale, ok, base, &QLocale::toInt, &QString::toInt);
}

template <> unsigned int parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<uint>(text, locale, ok, base, &QLocale::toUInt, &QString::toUInt);
}

template <> long parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<long>(text, locale, ok, base, &QLocale::toLong, &QString::toLong);
}

template <> unsigned long parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<ulong>(text, locale, ok, base, &QLocale::toULong, &QString::toULong);
}

template <> qint64 parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<qint64>(text, locale, ok, base, &QLocale::toLongLong, &QString::toLongLong);
}

template <> quint64 parse(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<quint64>(text, locale, ok, base, &QLocale::toULongLong,
                                 &QString::toULongLong);
}

template <> float parse(const QString& text, const QLocale& locale, bool* ok, int)
{
    return locale.toFloat(withPlainSigns(text, locale), ok);
}

template <> double parse(const QString& text, const QLocale& locale, bool* ok, int)
{
    return locale.toDouble(withPlainSigns(text, locale), ok);
}

template <> bool parse(const QString& text, const QLocale&, bool* ok, int)
{
    static const QStringList trueWords{QStringLiteral("true"), QStringLiteral("yes"),
                                       QStringLiteral("on")};
    static const QStringList falseWords{QStringLiteral("false"), QStringLiteral("no"),
                                        QStringLiteral("off")};
    bool valid = false;
    const short number = text.toShort(&valid, baseOf(text, QLocale::c()));
    bool result = number != 0;
    if (valid) {
        valid = number == 0 || number == 1;
    } else {
        const QString word = text.trimmed();
        result = isOneOf(word, trueWords);
        valid = result || isOneOf(word, falseWords);
    }
    if (ok)
        *ok = valid;
    return result;
}

} // namespace NumberHelpers

#include "todoubleex.h"

#include <VLBase/basetypes/stringhelpers.h>

#include <QVarLengthArray>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

namespace Vela {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// What the C library skips before a number in its own locale.
bool isBlank(char16_t unit)
{
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

/// Takes "0x" off the text where a number in base 16 follows; elsewhere "0" is a number itself.
bool takeHexPrefix(std::string_view& text)
{
    if (text.size() < 3 || text[0] != '0' || (text[1] | 0x20) != 'x')
        return false;
    const bool fraction = text[2] == '.' && text.size() > 3 && isHexDigit(text[3]);
    if (!isHexDigit(text[2]) && !fraction)
        return false;
    text.remove_prefix(2);
    return true;
}

/// The exponent of a number, cut at what no digits before it can outweigh.
long long exponentOf(std::string_view number, const char* marks)
{
    constexpr long long limit = 1'000'000'000'000;
    const std::size_t mark = number.find_first_of(marks);
    if (mark == std::string_view::npos)
        return 0;
    const bool negative = number[mark + 1] == '-';
    long long exponent = 0;
    for (const char c : number.substr(mark + 1)) {
        if (isDigit(c))
            exponent = std::min(exponent * 10 + (c - '0'), limit);
    }
    return negative ? -exponent : exponent;
}

/// Whether a number that no double can hold is too large, rather than too small. That is seen
/// from the weight of its first digit other than 0, which is far from 1 in either case.
bool isHuge(std::string_view number, bool hex)
{
    const char* marks = hex ? "pP" : "eE";
    const std::string_view digits = number.substr(0, number.find_first_of(marks));
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t first = std::min(digits.find_first_not_of("0."), digits.size());
    const auto places = static_cast<long long>(point) - static_cast<long long>(first);
    return places * (hex ? 4 : 1) + exponentOf(number, marks) > 0;
}

/// The number at the start of the text, which has no sign and "." as its decimal point.
/// \return nothing when there is none.
std::optional<double> unsignedNumber(std::string_view text)
{
    const bool hex = takeHexPrefix(text);
    double value = 0.0;
    const auto format = hex ? std::chars_format::hex : std::chars_format::general;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, format);
    if (error == std::errc())
        return value;
    if (error != std::errc::result_out_of_range)
        return std::nullopt;
    const std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.data()));
    return isHuge(number, hex) ? std::numeric_limits<double>::infinity() : 0.0;
}

/// What `wcstod` reads in the C locale, with "," and "." alike as decimal point.
///
/// Trying both separators in turn and keeping the reading that comes further, as one would with
/// `wcstod`, comes to the same under every locale whose decimal point is one of the two.
double numberWithEitherSeparator(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front().unicode()))
        text = text.mid(1);
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+'))
        text = text.mid(1);
    QVarLengthArray<char, 64> ascii;
    for (const QChar c : text) {
        if (c.unicode() == 0 || c.unicode() > 127)
            break;
        ascii.append(c == u',' ? '.' : static_cast<char>(c.unicode()));
    }
    // A second sign is for std::from_chars the first.
    if (ascii.isEmpty() || ascii.front() == '-')
        return 0.0;
    const auto value =
        unsignedNumber(std::string_view(ascii.data(), static_cast<std::size_t>(ascii.size())));
    if (!value)
        return 0.0;
    return negative ? -*value : *value;
}

/// Reads whole "_" numerator "/" denominator.
/// \return false when the text has another form.
bool readMixedFraction(const QString& text, double& value, bool& valid)
{
    QString fields[] = {QStringLiteral("_"), QStringLiteral("/"), QStringLiteral(" ")};
    if (!text.contains(u'_') || separateString(text, fields, 3) != 3)
        return false;
    const double denominator = fields[2].toDouble();
    valid = denominator != 0.0;
    value = valid ? fields[0].toDouble() + fields[1].toDouble() / denominator : 0.0;
    return true;
}

} // namespace

double toDoubleEx(const QString& text, bool* ok)
{
    double value = 0.0;
    bool valid = true;
    if (!readMixedFraction(text, value, valid))
        value = numberWithEitherSeparator(text);
    if (ok)
        *ok = valid;
    return value;
}

} // namespace Vela

#include "bytecount.h"

#include <QString>

#include <array>
#include <limits>

namespace vlbase::tool {
namespace {

constexpr QStringView units = u"kmg";

/// The power of 1024 that a unit stands for; nothing for an unknown one.
std::optional<int> powerOf(QStringView unit)
{
    if (unit.isEmpty() || unit.compare(u"b", Qt::CaseInsensitive) == 0)
        return 0;
    const auto position = units.indexOf(unit.front(), 0, Qt::CaseInsensitive);
    if (position < 0)
        return std::nullopt;
    const QStringView rest = unit.sliced(1);
    if (!rest.isEmpty() && rest.compare(u"b", Qt::CaseInsensitive) != 0 &&
        rest.compare(u"ib", Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return static_cast<int>(position) + 1;
}

} // namespace

std::optional<std::int64_t> parseByteCount(QStringView text)
{
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 2;
    const QStringView trimmed = text.trimmed();
    std::int64_t value = 0;
    qsizetype digits = 0;
    for (; digits < trimmed.size(); ++digits) {
        const int digit = trimmed[digits].unicode() - u'0';
        if (digit < 0 || digit > 9)
            break;
        if (value > (limit - digit) / 10)
            return std::nullopt;
        value = value * 10 + digit;
    }
    const auto power = powerOf(trimmed.sliced(digits).trimmed());
    if (digits == 0 || !power)
        return std::nullopt;
    for (int i = 0; i < *power; ++i) {
        if (value > limit / 1024)
            return std::nullopt;
        value *= 1024;
    }
    return value;
}

QString byteCountText(std::int64_t bytes)
{
    if (bytes == 1)
        return QStringLiteral("1 byte");
    if (bytes < 1024)
        return QStringLiteral("%1 bytes").arg(bytes);
    static constexpr std::array<QStringView, 3> names = {u"KiB", u"MiB", u"GiB"};
    double value = static_cast<double>(bytes) / 1024;
    std::size_t unit = 0;
    // What rounds to 1024 is one of the next unit.
    while (value >= 1023.95 && unit + 1 < names.size()) {
        value /= 1024;
        ++unit;
    }
    QString number = QString::number(value, 'f', 1);
    if (number.endsWith(QStringLiteral(".0")))
        number.chop(2);
    return QStringLiteral("%1 %2").arg(number, names[unit]);
}

} // namespace vlbase::tool

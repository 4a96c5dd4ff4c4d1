#include "plaintexts.h"

#include <cmath>

namespace vlbase::coord {
namespace {

struct Field
{
    std::uint64_t count; // how many of it make one of the field before
    std::size_t digits;
};

struct Fields
{
    Field fields[3];
    std::size_t size;
    std::uint64_t unitsPerDegree;
};

constexpr Fields millionths = {{{1000000, 6}}, 1, 1000000};
constexpr Fields hundredths = {{{60, 2}, {60, 2}, {100, 2}}, 3, 360000};
constexpr Fields seconds = {{{60, 2}, {60, 2}}, 2, 3600};

const Fields& fieldsOf(AngleForm form)
{
    switch (form) {
    case AngleForm::Millionths:
        return millionths;
    case AngleForm::Hundredths:
        return hundredths;
    case AngleForm::Seconds:
        return seconds;
    }
    return millionths;
}

/// The nearest number of units. The product alone may have been rounded up to a half.
std::uint64_t nearestUnits(double degrees, double unitsPerDegree)
{
    const double product = degrees * unitsPerDegree;
    const double rounded = std::round(product);
    const double rest = std::fma(degrees, unitsPerDegree, -rounded);
    return static_cast<std::uint64_t>(rounded) - (rest < -0.5 ? 1 : 0);
}

void writeAngle(const Fields& form, double degrees, std::size_t degreeDigits, TextBuffer& text)
{
    std::uint64_t divisor = form.unitsPerDegree;
    std::uint64_t rest = nearestUnits(std::abs(degrees), static_cast<double>(divisor));
    text.putDigits(rest / divisor, degreeDigits);
    for (std::size_t i = 0; i < form.size; ++i) {
        rest %= divisor;
        divisor /= form.fields[i].count;
        text.putDigits(rest / divisor, form.fields[i].digits);
    }
}

std::optional<double> readAngle(const Fields& form, std::size_t degreeDigits,
                                std::uint64_t maximalDegrees, PlainReader& reader)
{
    const auto degrees = reader.number(degreeDigits);
    if (!degrees)
        return std::nullopt;
    std::uint64_t units = *degrees;
    for (std::size_t i = 0; i < form.size; ++i) {
        const auto value = reader.number(form.fields[i].digits);
        if (!value || *value >= form.fields[i].count)
            return std::nullopt;
        units = units * form.fields[i].count + *value;
    }
    if (units > maximalDegrees * form.unitsPerDegree)
        return std::nullopt;
    // One division of exact numbers: the double nearest to the text.
    return static_cast<double>(units) / static_cast<double>(form.unitsPerDegree);
}

} // namespace

void writeAngles(AngleForm form, GeoPoint position, TextBuffer& text)
{
    const Fields& fields = fieldsOf(form);
    text.put(std::signbit(position.longitude) ? 'W' : 'E');
    writeAngle(fields, position.longitude, 3, text);
    text.put(std::signbit(position.latitude) ? 'S' : 'N');
    writeAngle(fields, position.latitude, 2, text);
}

std::optional<GeoPoint> readAngles(AngleForm form, const TextBuffer& text)
{
    const Fields& fields = fieldsOf(form);
    PlainReader reader(text);
    const char eastOrWest = reader.character();
    const auto longitude = readAngle(fields, 3, 180, reader);
    const char northOrSouth = reader.character();
    const auto latitude = readAngle(fields, 2, 90, reader);
    if (!longitude || !latitude || (eastOrWest != 'E' && eastOrWest != 'W') ||
        (northOrSouth != 'N' && northOrSouth != 'S'))
        return std::nullopt;
    return GeoPoint{northOrSouth == 'S' ? -*latitude : *latitude,
                    eastOrWest == 'W' ? -*longitude : *longitude};
}

} // namespace vlbase::coord

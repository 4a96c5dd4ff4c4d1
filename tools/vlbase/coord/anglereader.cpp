#include "anglereader.h"

#include "typedtext.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <utility>

namespace vlbase::tool::coord {
namespace {

constexpr std::size_t mostNumbers = 6;

/// A number with everything that stands around it.
struct Number
{
    double value = 0;
    bool hasFraction = false;
    char sign = 0;         // '+' or '-'
    char mark = 0;         // degreeMark, ' or "
    char letterBefore = 0; // N, S, E or W
    char letterAfter = 0;
    bool isSeparated = false; // a comma or semicolon stands before it
};

struct Numbers
{
    Number items[mostNumbers];
    std::size_t count = 0;
};

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isDirection(char character)
{
    return character == 'N' || character == 'S' || character == 'E' || character == 'W';
}

/// Takes the text apart. Letters belong to the number behind them when the text begins with one,
/// to the number before them otherwise.
class Scanner
{
public:
    explicit Scanner(std::string_view text)
        : m_text(text)
        , m_lettersLead(!text.empty() && isDirection(text.front()))
    {
    }

    bool scan(Numbers& numbers)
    {
        while (m_place < m_text.size()) {
            const char character = m_text[m_place];
            const bool isTaken = isDigit(character) || character == '.'
                                     ? takeNumber(numbers)
                                     : takeSign(character, numbers);
            if (!isTaken)
                return false;
        }
        return m_next.sign == 0 && m_next.letterBefore == 0 && !m_next.isSeparated;
    }

private:
    bool takeNumber(Numbers& numbers)
    {
        if (numbers.count == mostNumbers)
            return false;
        const char* begin = m_text.data() + m_place;
        const char* end = m_text.data() + m_text.size();
        const auto [rest, fault] =
            std::from_chars(begin, end, m_next.value, std::chars_format::fixed);
        if (fault != std::errc())
            return false;
        const auto size = static_cast<std::size_t>(rest - begin);
        m_next.hasFraction = m_text.substr(m_place, size).find('.') != std::string_view::npos;
        m_place += size;
        numbers.items[numbers.count++] = std::exchange(m_next, {});
        return true;
    }

    bool takeSign(char character, Numbers& numbers)
    {
        ++m_place;
        Number* last = numbers.count > 0 ? &numbers.items[numbers.count - 1] : nullptr;
        const bool isFresh = m_next.sign == 0 && m_next.letterBefore == 0 && !m_next.isSeparated;
        switch (character) {
        case ' ':
            return true;
        case ',':
        case ';':
            m_next.isSeparated = true;
            return last && isFresh;
        case '+':
        case '-':
            return std::exchange(m_next.sign, character) == 0;
        case degreeMark:
        case '\'':
        case '"':
            return last && isFresh && last->letterAfter == 0 &&
                   std::exchange(last->mark, character) == 0;
        default:
            break;
        }
        if (!isDirection(character))
            return false;
        if (m_lettersLead)
            return m_next.sign == 0 && std::exchange(m_next.letterBefore, character) == 0;
        return last && isFresh && std::exchange(last->letterAfter, character) == 0;
    }

    std::string_view m_text;
    bool m_lettersLead;
    std::size_t m_place = 0;
    Number m_next;
};

/// Where the second angle begins: whatever tells it must tell the same; 0 for a contradiction.
std::size_t secondAngle(const Numbers& numbers)
{
    std::size_t found = 0;
    for (std::size_t i = 1; i < numbers.count; ++i) {
        const Number& number = numbers.items[i];
        const bool begins = number.isSeparated || number.sign != 0 || number.letterBefore != 0 ||
                            number.mark == degreeMark || numbers.items[i - 1].letterAfter != 0;
        if (!begins)
            continue;
        if (found != 0)
            return 0;
        found = i;
    }
    if (found != 0)
        return found;
    return numbers.count % 2 == 0 ? numbers.count / 2 : 0;
}

struct Angle
{
    double degrees = 0;
    char letter = 0;
    std::size_t parts = 0;
    bool hasFraction = false;
};

std::optional<Angle> angleOf(const Number* numbers, std::size_t count)
{
    constexpr char marks[] = {degreeMark, '\'', '"'};
    if (count < 1 || count > 3)
        return std::nullopt;

    const Number& last = numbers[count - 1];
    const Number& first = numbers[0];
    Angle angle;
    angle.letter = first.letterBefore ? first.letterBefore : last.letterAfter;
    angle.parts = count;
    angle.hasFraction = last.hasFraction;
    if (angle.letter && first.sign)
        return std::nullopt;

    // Summed up in units of the last part and divided once, so that nothing is rounded twice.
    double units = 0;
    double unitsPerDegree = 1;
    for (std::size_t i = 0; i < count; ++i) {
        const Number& number = numbers[i];
        const bool isLast = i + 1 == count;
        if ((number.mark != 0 && number.mark != marks[i]) || (number.hasFraction && !isLast) ||
            (i > 0 && !(number.value < 60)) || (!isLast && number.letterAfter != 0))
            return std::nullopt;
        if (i > 0) {
            units *= 60;
            unitsPerDegree *= 60;
        }
        units += number.value;
    }
    const bool isNegative = first.sign == '-' || angle.letter == 'S' || angle.letter == 'W';
    angle.degrees = isNegative ? -units / unitsPerDegree : units / unitsPerDegree;
    return angle;
}

bool isOfLatitude(char letter)
{
    return letter == 'N' || letter == 'S';
}

/// Whether the first angle is the latitude; nothing when the letters contradict each other or
/// one has none: then something was left out or does not belong here.
std::optional<bool> isLatitudeFirst(const Angle& first, const Angle& second)
{
    if ((first.letter == 0) != (second.letter == 0))
        return std::nullopt;
    if (first.letter == 0)
        return !(std::abs(first.degrees) > 90 && std::abs(second.degrees) <= 90);
    if (isOfLatitude(first.letter) == isOfLatitude(second.letter))
        return std::nullopt;
    return isOfLatitude(first.letter);
}

CoordFormat likestFormat(const Angle& angle)
{
    if (angle.parts == 1)
        return CoordFormat::GeoDecimal;
    return angle.parts == 3 && angle.hasFraction ? CoordFormat::GeoLong : CoordFormat::GeoShort;
}

} // namespace

std::optional<AnglePair> readAngles(std::string_view text)
{
    Numbers numbers;
    if (!Scanner(text).scan(numbers))
        return std::nullopt;
    const std::size_t border = secondAngle(numbers);
    if (border == 0)
        return std::nullopt;
    const auto first = angleOf(numbers.items, border);
    const auto second = angleOf(numbers.items + border, numbers.count - border);
    if (!first || !second)
        return std::nullopt;
    const auto latitudeFirst = isLatitudeFirst(*first, *second);
    if (!latitudeFirst)
        return std::nullopt;

    AnglePair pair;
    pair.position = *latitudeFirst ? Coord(second->degrees, first->degrees)
                                   : Coord(first->degrees, second->degrees);
    if (!pair.position.IsValid())
        return std::nullopt;
    pair.format = likestFormat(*first);
    // Two equal ones, or a second that can only be a longitude, leave no doubt.
    pair.isOrderGuessed = !first->letter && std::abs(first->degrees) <= 90 &&
                          std::abs(second->degrees) <= 90 && first->degrees != second->degrees;
    return pair;
}

} // namespace vlbase::tool::coord

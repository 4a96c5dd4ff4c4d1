#include "gridreference.h"

#include <VLBase/coord/internal/degrees.h>

namespace vlbase::coord {
namespace {

bool isBlank(QChar character)
{
    return character == u' ' || character == u'\t';
}

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

QStringView withoutOuterBlanks(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

/// Takes a text apart from its front. Digits and letters are those of ASCII only.
class Reader
{
public:
    explicit Reader(QStringView text)
        : m_rest(withoutOuterBlanks(text))
    {
    }

    bool atEnd() const { return m_rest.isEmpty(); }

    void skipSeparators()
    {
        while (!atEnd() && (isBlank(m_rest.front()) || m_rest.front() == u'-'))
            m_rest = m_rest.sliced(1);
    }

    /// The digits that come next, none or more.
    QStringView digits()
    {
        qsizetype count = 0;
        while (count < m_rest.size() && isDigit(m_rest[count]))
            ++count;
        const QStringView found = m_rest.first(count);
        m_rest = m_rest.sliced(count);
        return found;
    }

    /// The letter that comes next, in upper case; 0 when there is none.
    char letter()
    {
        if (atEnd())
            return 0;
        const char16_t character = m_rest.front().unicode();
        const char16_t upper = character >= u'a' && character <= u'z'
                                   ? static_cast<char16_t>(character - u'a' + u'A')
                                   : character;
        if (upper < u'A' || upper > u'Z')
            return 0;
        m_rest = m_rest.sliced(1);
        return static_cast<char>(upper);
    }

private:
    QStringView m_rest;
};

int numberOf(QStringView digits)
{
    int number = 0;
    for (const QChar digit : digits)
        number = number * 10 + digit.unicode() - u'0';
    return number;
}

/// The digits at the end of a reference: one even run of them, or two equal ones.
bool readDigits(Reader& reader, GridReference& reference)
{
    QStringView easting = reader.digits();
    QStringView northing;
    if (!reader.atEnd()) {
        reader.skipSeparators();
        northing = reader.digits();
    } else if (easting.size() % 2 == 0) {
        northing = easting.sliced(easting.size() / 2);
        easting.chop(northing.size());
    }
    if (!reader.atEnd())
        return false;
    if (easting.size() != northing.size() || easting.isEmpty() || easting.size() > 5)
        return false;

    for (qsizetype i = easting.size(); i < 5; ++i)
        reference.step *= 10;
    reference.easting = numberOf(easting) * reference.step;
    reference.northing = numberOf(northing) * reference.step;
    return true;
}

bool readZone(Reader& reader, GridReference& reference)
{
    const QStringView digits = reader.digits();
    if (digits.isEmpty() || digits.size() > 2)
        return false;
    reference.zone = numberOf(digits);
    reader.skipSeparators();
    reference.band = reader.letter();
    return isLongitudeZone(reference.zone) && reference.band != 0;
}

} // namespace

std::optional<GridReference> parseGridReference(QStringView text, int projection)
{
    GridReference reference;
    reference.code = codeOf(projection);
    const auto kind = gridKindOf(reference.code);
    if (!kind)
        return std::nullopt;
    reference.kind = *kind;
    reference.alternative = *kind == GridKind::Mgrs && projection < 0;

    Reader reader(text);
    if (*kind == GridKind::Mgrs) {
        if (!readZone(reader, reference))
            return std::nullopt;
        reader.skipSeparators();
    }
    if (*kind != GridKind::Irish) {
        reference.first = reader.letter();
        reader.skipSeparators();
    }
    reference.second = reader.letter();
    reader.skipSeparators();
    if (!readDigits(reader, reference))
        return std::nullopt;
    return reference;
}

} // namespace vlbase::coord

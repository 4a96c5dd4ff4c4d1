#include "stringhelpers.h"

#include <QStringView>

#include <algorithm>

namespace Vela {

namespace {

QStringView withoutBlanks(QStringView text)
{
    while (text.startsWith(u' '))
        text = text.mid(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

} // namespace

unsigned char separateString(QString text, QString* parts, unsigned char count)
{
    qsizetype position = 0;
    unsigned char index = 0;
    for (;;) {
        const QString separator = parts[index];
        const qsizetype found = text.indexOf(separator, position);
        const qsizetype end = found < 0 ? text.size() : found;
        parts[index] = withoutBlanks(QStringView(text).mid(position, end - position)).toString();
        ++index;
        if (found < 0 || index >= count)
            return index;
        position = found + separator.size();
    }
}

const QString& strip(QString& text, stripType_ type, wchar_t character)
{
    const auto isCharacter = [character](QChar c) {
        return static_cast<char32_t>(c.unicode()) == static_cast<char32_t>(character);
    };
    if (type == StripStart || type == StripBoth) {
        const auto first = std::find_if_not(text.cbegin(), text.cend(), isCharacter);
        text.remove(0, first - text.cbegin());
    }
    if (type == StripEnd || type == StripBoth) {
        const auto last = std::find_if_not(text.crbegin(), text.crend(), isCharacter);
        text.chop(last - text.crbegin());
    }
    return text;
}

bool isAsciiString(QString text)
{
    return !text.isEmpty() &&
           std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() <= 127; });
}

bool replaceWith(std::string& text, const std::string& what, const std::string& with)
{
    std::size_t found = what.empty() ? std::string::npos : text.find(what);
    if (found == std::string::npos)
        return false;
    // Put together aside: in one pass, and `what` and `with` may be the text itself.
    std::string replaced;
    std::size_t position = 0;
    for (; found != std::string::npos; found = text.find(what, position)) {
        replaced.append(text, position, found - position).append(with);
        position = found + what.size();
    }
    replaced.append(text, position);
    text = std::move(replaced);
    return true;
}

} // namespace Vela

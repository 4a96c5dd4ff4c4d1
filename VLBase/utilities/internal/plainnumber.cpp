#include "plainnumber.h"

#include <QLocale>
#include <QStringView>

namespace vlbase::utilities {

namespace {

constexpr char16_t groupMark = u',';

bool isDigitOfAnyBase(char16_t unit)
{
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') ||
           (unit >= u'A' && unit <= u'Z');
}

/// Translates the symbols of a locale one by one.
class Symbols
{
public:
    explicit Symbols(const QLocale& locale)
        : m_zero(locale.zeroDigit())
        , m_plus(locale.positiveSign())
        , m_minus(locale.negativeSign())
        , m_group(locale.groupSeparator())
    {
        if (locale.numberOptions() & QLocale::RejectGroupSeparator)
            m_group.clear();
    }

    /// Takes the first symbol off `rest`.
    /// \return its ASCII form, or 0 when it is none.
    char16_t take(QStringView& rest) const
    {
        if (takeText(rest, m_group) || (isBlankLike(m_group) && takeText(rest, u" ")))
            return groupMark;
        if (takeText(rest, m_minus) || takeText(rest, u"-"))
            return u'-';
        if (takeText(rest, m_plus) || takeText(rest, u"+"))
            return u'+';
        if (const char16_t digit = takeDigit(rest))
            return digit;
        const char16_t unit = rest.front().unicode();
        rest = rest.mid(1);
        return isDigitOfAnyBase(unit) ? unit : u'\0';
    }

private:
    static bool takeText(QStringView& rest, QStringView symbol)
    {
        if (symbol.isEmpty() || !rest.startsWith(symbol))
            return false;
        rest = rest.mid(symbol.size());
        return true;
    }

    /// Separators that look like a blank are typed as one.
    static bool isBlankLike(QStringView group) { return group == u"\u00a0" || group == u"\u202f"; }

    /// The digits of a script follow its zero, which may take two units.
    char16_t takeDigit(QStringView& rest) const
    {
        const qsizetype size = m_zero.size();
        if (size == 0 || rest.size() < size || !rest.startsWith(m_zero.first(size - 1)))
            return u'\0';
        const int value = rest[size - 1].unicode() - m_zero[size - 1].unicode();
        if (value < 0 || value > 9)
            return u'\0';
        rest = rest.mid(size);
        return static_cast<char16_t>(u'0' + value);
    }

    QString m_zero;
    QString m_plus;
    QString m_minus;
    QString m_group;
};

/// What follows sign and "0x".
QStringView withoutPrefix(QStringView number)
{
    if (number.startsWith(u'-') || number.startsWith(u'+'))
        number = number.mid(1);
    return number.startsWith(u"0x", Qt::CaseInsensitive) ? number.mid(2) : number;
}

/// Removes group marks; false when one is missing or stands in the wrong place.
bool removeGroups(QString& number)
{
    qsizetype groups = 0;
    qsizetype digits = 0;
    for (const QChar c : withoutPrefix(number)) {
        if (c == groupMark) {
            const bool wellPlaced = groups == 0 ? digits >= 1 && digits <= 3 : digits == 3;
            if (!wellPlaced)
                return false;
            ++groups;
            digits = 0;
        } else {
            ++digits;
        }
    }
    if (groups > 0 && digits != 3)
        return false;
    number.remove(groupMark);
    return true;
}

} // namespace

int baseOf(const QString& text, const QLocale& locale)
{
    const Symbols symbols(locale);
    QStringView rest = QStringView(text).trimmed();
    const auto take = [&] { return rest.isEmpty() ? u'\0' : symbols.take(rest); };
    char16_t symbol = take();
    if (symbol == u'-' || symbol == u'+')
        symbol = take();
    if (symbol != u'0')
        return 10;
    symbol = take();
    return symbol == u'x' || symbol == u'X' ? 16 : 8;
}

QString plainNumber(const QString& text, const QLocale& locale)
{
    const Symbols symbols(locale);
    QString number;
    for (QStringView rest = QStringView(text).trimmed(); !rest.isEmpty();) {
        const char16_t symbol = symbols.take(rest);
        if (symbol == u'\0')
            return QString();
        number += QChar(symbol);
    }
    return removeGroups(number) ? number : QString();
}

QString withPlainSigns(QString text, const QLocale& locale)
{
    const QString minus = locale.negativeSign();
    const QString plus = locale.positiveSign();
    if (minus.size() > 1)
        text.replace(minus, QStringLiteral("-"));
    if (plus.size() > 1)
        text.replace(plus, QStringLiteral("+"));
    return text;
}

} // namespace vlbase::utilities

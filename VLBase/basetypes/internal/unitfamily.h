#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringView>

#include <algorithm>
#include <iterator>

namespace vlbase {

/// One unit: its value and its two names.
template <typename Type> struct Unit
{
    Type value;
    const char* name;   ///< Latin-1
    const char* source; ///< text to translate, UTF-8
};

/// The first word of a text, without the white space around it.
inline QStringView firstWord(QStringView text)
{
    const auto isSpace = [](QChar c) { return c.isSpace(); };
    const auto begin = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto end = std::find_if(begin, text.end(), isSpace);
    return text.mid(begin - text.begin(), end - begin);
}

/// What the unit families have in common. A family has units, a table from small to large.
template <typename Type, std::size_t count> class UnitFamily
{
public:
    UnitFamily(const char* context, const Unit<Type> (&units)[count])
        : m_context(context)
        , m_units(units)
    {
        m_values.reserve(count);
        for (const Unit<Type>& unit : units)
            m_values.append(unit.value);
    }

    const QList<Type>& values() const { return m_values; }

    QString toString(Type value) const
    {
        const Unit<Type>* unit = find(value);
        return unit ? QString::fromLatin1(unit->name) : QString();
    }

    QString toDisplayString(Type value) const
    {
        const Unit<Type>* unit = find(value);
        return unit ? QCoreApplication::translate(m_context, unit->source) : QString();
    }

    Type fromString(const QString& text, bool* ok) const
    {
        const QStringView word = firstWord(text);
        const auto begins = [word](const Unit<Type>& unit) {
            return QLatin1String(unit.name).startsWith(word, Qt::CaseInsensitive);
        };
        const auto found = word.isEmpty()
                               ? std::end(m_units)
                               : std::find_if(std::begin(m_units), std::end(m_units), begins);
        const bool isFound = found != std::end(m_units);
        if (ok)
            *ok = isFound;
        return isFound ? found->value : m_values.first();
    }

    Type successor(Type value, const QList<Type>& allowed) const
    {
        const qsizetype at = m_values.indexOf(value);
        for (qsizetype i = at + 1; at >= 0 && i < m_values.size(); ++i) {
            if (allowed.contains(m_values[i]))
                return m_values[i];
        }
        return value;
    }

    Type predecessor(Type value, const QList<Type>& allowed) const
    {
        // Ends before the first unit: nobody steps down to the smallest one.
        for (qsizetype i = m_values.indexOf(value) - 1; i > 0; --i) {
            if (allowed.contains(m_values[i]))
                return m_values[i];
        }
        return value;
    }

private:
    const Unit<Type>* find(Type value) const
    {
        const auto found =
            std::find_if(std::begin(m_units), std::end(m_units),
                         [value](const Unit<Type>& unit) { return unit.value == value; });
        return found != std::end(m_units) ? found : nullptr;
    }

    const char* m_context;
    const Unit<Type> (&m_units)[count];
    QList<Type> m_values;
};

} // namespace vlbase

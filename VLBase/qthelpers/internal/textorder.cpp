#include "textorder.h"

#include <QLocale>

#include <algorithm>

namespace vlbase::qthelpers {

namespace {

bool isDigit(QChar c)
{
    return c.digitValue() >= 0;
}

// The run of digits at `at`, without leading zeros, behind its length: such texts stand in the
// order of their numbers. `at` goes behind it.
QString takeNumber(const QString& text, qsizetype& at)
{
    QString digits;
    for (; at < text.size() && isDigit(text[at]); ++at) {
        if (!digits.isEmpty() || text[at].digitValue() != 0)
            digits += QChar(u'0' + text[at].digitValue());
    }
    return QChar(static_cast<char16_t>(std::min<qsizetype>(digits.size(), 0xFFFF))) + digits;
}

// Code points in natural order: numbers stand where the digits do.
QString naturalText(const QString& text)
{
    const QString folded = text.toCaseFolded();
    QString key;
    for (qsizetype at = 0; at < folded.size();) {
        if (isDigit(folded[at]))
            key += u'0' + takeNumber(folded, at);
        else
            key += folded[at++];
    }
    return key;
}

} // namespace

TextOrder::TextOrder()
    : m_collator(QLocale())
{
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    m_collator.setNumericMode(true);
    if (m_collator.locale() == QLocale::c()) {
        m_way = Way::CodePoints;
    } else if (!doesNumbers()) {
        m_way = Way::Segments;
        m_collator.setNumericMode(false);
    }
}

bool TextOrder::doesNumbers() const
{
    const QString rising[] = {QStringLiteral("a1"), QStringLiteral("a3"), QStringLiteral("a20"),
                              QStringLiteral("a99999999999999999999"),
                              QStringLiteral("a100000000000000000000")};
    return std::adjacent_find(std::begin(rising), std::end(rising),
                              [this](const QString& a, const QString& b) {
                                  return m_collator.sortKey(a).compare(m_collator.sortKey(b)) >= 0;
                              }) == std::end(rising);
}

TextOrder::Key TextOrder::key(const QString& text) const
{
    Key key;
    switch (m_way) {
    case Way::Whole:
        key.m_parts.push_back({m_collator.sortKey(text), {}, {}});
        break;
    case Way::CodePoints:
        key.m_parts.push_back({{}, {}, naturalText(text)});
        break;
    case Way::Segments:
        for (qsizetype at = 0; at < text.size();) {
            const qsizetype begin = at;
            while (at < text.size() && !isDigit(text[at]))
                ++at;
            const QString letters = text.mid(begin, at - begin);
            key.m_parts.push_back({{}, letters, takeNumber(text, at)});
        }
        break;
    }
    return key;
}

int TextOrder::compare(const Key& first, const Key& second) const
{
    for (std::size_t i = 0; i < first.m_parts.size() && i < second.m_parts.size(); ++i) {
        const Key::Part& a = first.m_parts[i];
        const Key::Part& b = second.m_parts[i];
        int result = 0;
        if (a.whole && b.whole)
            result = a.whole->compare(*b.whole);
        else if (m_way == Way::Segments)
            result = m_collator.compare(a.letters, b.letters);
        if (result == 0)
            result = a.number.compare(b.number);
        if (result != 0)
            return result;
    }
    return static_cast<int>(first.m_parts.size()) - static_cast<int>(second.m_parts.size());
}

} // namespace vlbase::qthelpers

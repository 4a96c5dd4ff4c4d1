// The filter language.

#include "filternode.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QStringList>
#include <QTimeZone>

#include <limits>
#include <utility>

namespace vlbase::logreading {
namespace {

constexpr std::int64_t earliest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max();
constexpr int deepest = 200; // brackets and "not" inside each other

struct Field
{
    const char16_t* name;
    unsigned bits;
};

// "after" and "before" are times, which are no text.
constexpr Field fields[] = {{u"number", NumberField},
                            {u"level", LevelField},
                            {u"station", StationField},
                            {u"module", ModuleField},
                            {u"text", eventFields},
                            {u"field1", FirstEventField},
                            {u"field2", FirstEventField << 1},
                            {u"field3", FirstEventField << 2},
                            {u"after", 0},
                            {u"before", 0}};

bool isBlank(QChar c)
{
    return c.isSpace();
}

bool isBare(QChar c, bool inValue)
{
    return !isBlank(c) && c != u'(' && c != u')' && c != u'"' && c != u',' &&
           (inValue || c != u':');
}

bool isWord(QStringView text, QStringView word)
{
    return text == word || text == word.toString().toUpper();
}

bool isReserved(QStringView text)
{
    return isWord(text, u"and") || isWord(text, u"or") || isWord(text, u"not");
}

std::optional<std::int64_t> secondsOf(const QString& text, const QDateTime& now)
{
    static const QRegularExpression ago(QStringLiteral("^-([0-9]{1,9})([smhd])$"));
    static const QRegularExpression point(
        QStringLiteral("^([0-9]{4}-[0-9]{2}-[0-9]{2})(?:[T ]([0-9]{2}:[0-9]{2})(:[0-9]{2})?"
                       "(?:Z|([+-])([0-9]{2}):?([0-9]{2}))?)?$"));
    if (const auto match = ago.match(text); match.hasMatch()) {
        const char16_t unit = match.capturedView(2).front().unicode();
        const int seconds = unit == u'd' ? 86400 : unit == u'h' ? 3600 : unit == u'm' ? 60 : 1;
        return now.toSecsSinceEpoch() - match.captured(1).toLongLong() * seconds;
    }
    const auto match = point.match(text);
    const QDate date = QDate::fromString(match.captured(1), Qt::ISODate);
    const QString minutes =
        match.captured(2).isEmpty() ? QStringLiteral("00:00") : match.captured(2);
    const QString second = match.captured(3).isEmpty() ? QStringLiteral(":00") : match.captured(3);
    const QTime time = QTime::fromString(minutes + second, QStringLiteral("hh:mm:ss"));
    const int zoneHours = match.captured(5).toInt();
    const int zoneMinutes = match.captured(6).toInt();
    if (!match.hasMatch() || !date.isValid() || !time.isValid() || zoneHours > 14 ||
        zoneMinutes > 59)
        return std::nullopt;
    const int offset = (zoneHours * 60 + zoneMinutes) * (match.captured(4) == u"-" ? -60 : 60);
    return QDateTime(date, time, Qt::UTC).toSecsSinceEpoch() - offset;
}

/// Recursive descent; the first fault ends it.
class Parser
{
public:
    Parser(const QString& text, const QDateTime& now)
        : m_text(text)
        , m_now(now)
    {
    }

    using Node = std::shared_ptr<const FilterNode>;

    Node parse()
    {
        Node node = readFilter();
        if (node && !isAtEnd())
            return fail(m_at, QStringLiteral("'and', 'or' or the end"));
        return node;
    }

    bool isEmpty() { return isAtEnd(); }
    const FilterFault& fault() const { return m_fault; }

private:
    Node fail(qsizetype place, const QString& expected)
    {
        if (m_fault.column == 0)
            m_fault = {place + 1, expected};
        return nullptr;
    }

    bool isAtEnd()
    {
        while (m_at < m_text.size() && isBlank(m_text[m_at]))
            ++m_at;
        return m_at == m_text.size();
    }
    QChar next() const { return m_text[m_at]; }
    bool takeCharacter(char16_t c)
    {
        const bool isThere = !isAtEnd() && next() == c;
        m_at += isThere ? 1 : 0;
        return isThere;
    }
    QStringView peekBare(bool inValue)
    {
        if (isAtEnd() || next() == u'/')
            return {};
        qsizetype end = m_at;
        while (end < m_text.size() && isBare(m_text[end], inValue))
            ++end;
        return QStringView(m_text).mid(m_at, end - m_at);
    }
    bool takeWord(QStringView word)
    {
        const QStringView bare = peekBare(false);
        const bool isThere = isWord(bare, word);
        m_at += isThere ? bare.size() : 0;
        return isThere;
    }

    Node readFilter()
    {
        FilterNodes nodes;
        do {
            Node node = readAnd();
            if (!node)
                return nullptr;
            nodes.push_back(std::move(node));
        } while (takeWord(u"or"));
        return anyOf(std::move(nodes));
    }

    bool endsAnd() { return isAtEnd() || next() == u')' || isWord(peekBare(false), u"or"); }

    Node readAnd()
    {
        FilterNodes nodes;
        bool isWanted = true;
        while (isWanted || !endsAnd()) {
            Node node = readNot();
            if (!node)
                return nullptr;
            nodes.push_back(std::move(node));
            isWanted = takeWord(u"and");
        }
        return allOf(std::move(nodes));
    }

    Node readNot()
    {
        bool isNot = false;
        while (takeWord(u"not"))
            isNot = !isNot;
        Node node = readTerm();
        return node && isNot ? notOf(std::move(node)) : node;
    }

    Node readTerm()
    {
        const QString what = QStringLiteral("a word, /pattern/, field:value or '('");
        if (isAtEnd())
            return fail(m_at, what);
        const qsizetype start = m_at;
        if (next() == u'(')
            return readBrackets();
        if (next() == u'/')
            return readPattern(senderFields | eventFields);
        if (next() == u'"') {
            const auto text = takeQuoted();
            return text ? fieldNode(senderFields | eventFields, containsTest(*text)) : nullptr;
        }
        const QString word = peekBare(false).toString();
        if (word.isEmpty() || isReserved(word))
            return fail(start, what);
        m_at += word.size();
        if (takeCharacter(u':'))
            return readField(start, word);
        return fieldNode(senderFields | eventFields, containsTest(word));
    }

    Node readBrackets()
    {
        if (m_depth == deepest)
            return fail(m_at, QStringLiteral("fewer brackets inside each other"));
        ++m_depth;
        ++m_at;
        Node node = readFilter();
        --m_depth;
        if (node && !takeCharacter(u')'))
            return fail(m_at, QStringLiteral("')'"));
        return node;
    }

    std::optional<QString> takeQuoted()
    {
        QString text;
        for (qsizetype i = m_at + 1; i < m_text.size(); ++i) {
            if (m_text[i] == u'"') {
                m_at = i + 1;
                return text;
            }
            const bool isEscape = m_text[i] == u'\\' && i + 1 < m_text.size() &&
                                  (m_text[i + 1] == u'"' || m_text[i + 1] == u'\\');
            i += isEscape ? 1 : 0;
            text += m_text[i];
        }
        fail(m_text.size(), QStringLiteral("'\"'"));
        return std::nullopt;
    }

    Node readPattern(unsigned bits)
    {
        const qsizetype start = ++m_at;
        QString pattern;
        while (m_at < m_text.size() && next() != u'/') {
            const bool isPair = next() == u'\\' && m_at + 1 < m_text.size();
            if (isPair && m_text[m_at + 1] != u'/')
                pattern += next();
            m_at += isPair ? 1 : 0;
            pattern += next();
            ++m_at;
        }
        if (m_at == m_text.size())
            return fail(m_at, QStringLiteral("'/'"));
        ++m_at;
        const bool ignoreCase = m_at < m_text.size() && next() == u'i' &&
                                (m_at + 1 == m_text.size() || !isBare(m_text[m_at + 1], false));
        m_at += ignoreCase ? 1 : 0;
        BytePattern::Fault fault;
        auto made = BytePattern::make(pattern, ignoreCase, fault);
        if (!made)
            return fail(placeIn(start, fault.place),
                        QStringLiteral("a regular expression (%1)").arg(fault.reason));
        // The text of a number is not looked for in all of the line.
        return fieldNode(bits,
                         patternTest(std::move(made), literalOf(pattern, ignoreCase), ignoreCase));
    }

    /// Where the pattern's character stands in the filter's text, in which `\/` is one.
    qsizetype placeIn(qsizetype start, qsizetype characters) const
    {
        qsizetype at = start;
        for (; characters > 0 && at < m_text.size(); --characters, ++at) {
            if (m_text[at] == u'\\' && at + 1 < m_text.size() && m_text[at + 1] == u'/')
                ++at;
        }
        return at;
    }

    Node readField(qsizetype start, const QString& name)
    {
        for (const Field& field : fields) {
            if (QStringView(field.name) != name)
                continue;
            if (!isAtEnd() && next() == u'/' && field.bits != 0)
                return readPattern(field.bits);
            return readValues(field);
        }
        return fail(start, QStringLiteral("one of the fields ") +
                               filterFields().join(QStringLiteral(", ")));
    }

    Node readValues(const Field& field)
    {
        FilterNodes nodes;
        do {
            Node node = readValue(field);
            if (!node)
                return nullptr;
            nodes.push_back(std::move(node));
        } while (takeCharacter(u','));
        return anyOf(std::move(nodes));
    }

    Node readValue(const Field& field)
    {
        const bool isQuoted = !isAtEnd() && next() == u'"';
        const qsizetype start = m_at;
        const auto text = isQuoted ? takeQuoted() : std::optional(peekBare(true).toString());
        if (!text)
            return nullptr;
        if (!isQuoted) {
            if (text->isEmpty() || isReserved(*text))
                return fail(start, QStringLiteral("a value"));
            m_at += text->size();
        }
        if (field.bits == 0)
            return timeOf(field, *text, start);
        if (field.bits == NumberField)
            return numberOf(*text, start);
        return fieldNode(field.bits, valueTest(*text, isQuoted));
    }

    Node timeOf(const Field& field, const QString& text, qsizetype start)
    {
        const auto seconds = secondsOf(text, m_now);
        if (!seconds)
            return fail(start, QStringLiteral("a time such as 2026-11-22, 2026-11-22T10:15:02Z or "
                                              "-15m"));
        const bool isAfter = QStringView(field.name) == u"after";
        return isAfter ? timeNode(*seconds, latest) : timeNode(earliest, *seconds);
    }

    Node numberOf(const QString& text, qsizetype start)
    {
        static const QRegularExpression range(QStringLiteral("^([0-9]{1,9})(?:-([0-9]{1,9}))?$"));
        static const QRegularExpression wild(QStringLiteral("^[0-9*?]+$"));
        const auto match = range.match(text);
        if (match.hasMatch()) {
            const int from = match.captured(1).toInt();
            const int to = match.captured(2).isEmpty() ? from : match.captured(2).toInt();
            if (from <= to)
                return numberNode(from, to);
        } else if (wild.match(text).hasMatch()) {
            return fieldNode(NumberField, valueTest(text, false));
        }
        return fail(start, QStringLiteral("a number or a range such as 100000-100100"));
    }

    const QString m_text;
    const QDateTime m_now;
    qsizetype m_at = 0;
    int m_depth = 0;
    FilterFault m_fault;
};

} // namespace

std::optional<Filter> Filter::parse(const QString& text, FilterFault& fault, const QDateTime& now)
{
    Parser parser(text, now);
    Filter filter;
    if (parser.isEmpty())
        return filter;
    filter.m_root = parser.parse();
    fault = parser.fault();
    return filter.m_root ? std::optional(filter) : std::nullopt;
}

QStringList filterFields()
{
    QStringList names;
    for (const Field& field : fields)
        names << QString::fromUtf16(field.name);
    return names;
}

QString filterQuoted(const QString& text)
{
    bool isPlain = !text.isEmpty() && !isReserved(text) && !text.startsWith(u'/');
    for (const QChar c : text)
        isPlain = isPlain && isBare(c, false) && c != u'*' && c != u'?';
    if (isPlain)
        return text;
    QString quoted = text;
    quoted.replace(QStringLiteral("\\"), QStringLiteral("\\\\"));
    quoted.replace(QStringLiteral("\""), QStringLiteral("\\\""));
    return u'"' + quoted + u'"';
}

} // namespace vlbase::logreading

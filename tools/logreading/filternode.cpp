#include "filternode.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace vlbase::logreading {
namespace {

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

/// The characters of a text with their case taken away.
void fold(std::string_view text, std::u32string& out)
{
    out.clear();
    if (isAscii(text)) {
        for (const char c : text)
            out += static_cast<char32_t>(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
        return;
    }
    const QString folded =
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toCaseFolded();
    for (const char32_t c : folded.toUcs4())
        out += c;
}

class ContainsTest : public TextTest
{
public:
    explicit ContainsTest(const QString& text)
        : m_bytes(text.toStdString())
        , m_finder(m_bytes, true)
    {
        if (!isAscii(m_bytes))
            m_text = text;
    }
    bool holds(std::string_view text) const override
    {
        if (!m_text)
            return m_finder.isIn(text);
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
            .contains(*m_text, Qt::CaseInsensitive);
    }
    std::string literal(bool& ignoreCase) const override
    {
        ignoreCase = true;
        return m_text ? std::string() : m_bytes;
    }

private:
    std::string m_bytes;
    TextFinder m_finder;
    std::optional<QString> m_text; // when it is more than ASCII
};

class ValueTest : public TextTest
{
public:
    ValueTest(const QString& text, bool isExact)
    {
        fold(text.toStdString(), m_value);
        m_isExact = isExact || m_value.find_first_of(U"*?") == std::u32string::npos;
    }
    bool holds(std::string_view text) const override
    {
        thread_local std::u32string folded;
        fold(text, folded);
        return m_isExact ? folded == m_value : matches(folded);
    }
    std::string literal(bool& ignoreCase) const override
    {
        // Letters that Unicode takes for another case of characters beyond ASCII end a piece.
        ignoreCase = true;
        std::string longest;
        std::string run;
        for (const char32_t c : m_value) {
            const bool isWild = !m_isExact && (c == U'*' || c == U'?');
            if (isWild || c >= 0x80 || c == U'k' || c == U's')
                run.clear();
            else
                run += static_cast<char>(c);
            if (run.size() > longest.size())
                longest = run;
        }
        return longest;
    }

private:
    /// On a mismatch the last star takes one character more; linear but for that.
    bool matches(const std::u32string& text) const
    {
        constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
        std::size_t at = 0;
        std::size_t star = none;
        std::size_t resume = 0;
        std::size_t i = 0;
        while (i < text.size()) {
            if (at < m_value.size() && m_value[at] == U'*') {
                star = at++;
                resume = i;
            } else if (at < m_value.size() && (m_value[at] == U'?' || m_value[at] == text[i])) {
                ++at;
                ++i;
            } else if (star != none) {
                at = star + 1;
                i = ++resume;
            } else {
                return false;
            }
        }
        return m_value.find_first_not_of(U'*', at) == std::u32string::npos;
    }

    std::u32string m_value;
    bool m_isExact = true;
};

class PatternTest : public TextTest
{
public:
    PatternTest(std::shared_ptr<const BytePattern> pattern, std::string literal, bool ignoreCase)
        : m_pattern(std::move(pattern))
        , m_literal(std::move(literal))
        , m_ignoreCase(ignoreCase)
    {
    }
    bool holds(std::string_view text) const override { return m_pattern->isIn(text); }
    std::string literal(bool& ignoreCase) const override
    {
        ignoreCase = m_ignoreCase;
        return m_literal;
    }

private:
    std::shared_ptr<const BytePattern> m_pattern;
    std::string m_literal;
    bool m_ignoreCase;
};

class FieldNode : public FilterNode
{
public:
    FieldNode(unsigned fields, std::unique_ptr<const TextTest> test)
        : m_fields(fields)
        , m_test(std::move(test))
    {
        bool ignoreCase = false;
        const std::string literal = m_test->literal(ignoreCase);
        m_requiredSize = literal.size();
        if (m_requiredSize > 0)
            m_required.emplace(literal, ignoreCase);
    }

    bool holds(const LineFields& line) const override
    {
        if (holdsForSender({line.station, line.module, line.level}))
            return true;
        for (unsigned i = 0; i < line.event.size(); ++i) {
            if ((m_fields & (FirstEventField << i)) != 0 && m_test->holds(line.event[i]))
                return true;
        }
        return (m_fields & NumberField) != 0 && line.number != 0 &&
               m_test->holds(std::to_string(line.number));
    }
    Truth holdsFor(const Sender& sender) const override
    {
        if (holdsForSender(sender))
            return Truth::Yes;
        return (m_fields & ~senderFields) != 0 ? Truth::Maybe : Truth::No;
    }
    const TextFinder* required(std::size_t& size) const override
    {
        size = m_requiredSize;
        return m_required ? &*m_required : nullptr;
    }

private:
    bool holdsForSender(const Sender& sender) const
    {
        return ((m_fields & StationField) != 0 && m_test->holds(sender.station)) ||
               ((m_fields & ModuleField) != 0 && m_test->holds(sender.module)) ||
               ((m_fields & LevelField) != 0 && m_test->holds(sender.level));
    }

    unsigned m_fields;
    std::unique_ptr<const TextTest> m_test;
    std::optional<TextFinder> m_required;
    std::size_t m_requiredSize = 0;
};

class NumberNode : public FilterNode
{
public:
    NumberNode(int from, int to)
        : m_from(from)
        , m_to(to)
    {
    }
    bool holds(const LineFields& line) const override { return isIn(line.number); }
    Truth holdsAt(int number, std::optional<std::int64_t>) const override
    {
        return isIn(number) ? Truth::Yes : Truth::No;
    }
    bool asksColumns() const override { return true; }

private:
    bool isIn(int number) const { return number != 0 && number >= m_from && number <= m_to; }

    int m_from;
    int m_to;
};

class TimeNode : public FilterNode
{
public:
    TimeNode(std::int64_t from, std::int64_t before)
        : m_from(from)
        , m_before(before)
    {
    }
    bool holds(const LineFields& line) const override { return isIn(line.seconds); }
    Truth holdsAt(int, std::optional<std::int64_t> seconds) const override
    {
        return isIn(seconds) ? Truth::Yes : Truth::No;
    }
    bool asksColumns() const override { return true; }

private:
    bool isIn(std::optional<std::int64_t> seconds) const
    {
        return seconds && *seconds >= m_from && *seconds < m_before;
    }

    std::int64_t m_from;
    std::int64_t m_before;
};

Truth opposite(Truth truth)
{
    return truth == Truth::Maybe ? truth : truth == Truth::Yes ? Truth::No : Truth::Yes;
}

class NotNode : public FilterNode
{
public:
    explicit NotNode(std::shared_ptr<const FilterNode> node)
        : m_node(std::move(node))
    {
    }
    bool holds(const LineFields& line) const override { return !m_node->holds(line); }
    Truth combine(const Truth*& answer) const override { return opposite(m_node->combine(answer)); }
    void appendLeaves(std::vector<const FilterNode*>& leaves) const override
    {
        m_node->appendLeaves(leaves);
    }

private:
    std::shared_ptr<const FilterNode> m_node;
};

/// All of some nodes, or any of them: `m_decides` is the answer that one alone brings about.
class ListNode : public FilterNode
{
public:
    ListNode(FilterNodes nodes, Truth decides)
        : m_nodes(std::move(nodes))
        , m_decides(decides)
    {
    }
    bool holds(const LineFields& line) const override
    {
        const bool decides = m_decides == Truth::Yes;
        const bool isDecided = std::any_of(m_nodes.begin(), m_nodes.end(), [&](const auto& node) {
            return node->holds(line) == decides;
        });
        return isDecided == decides;
    }
    Truth combine(const Truth*& answer) const override
    {
        Truth truth = opposite(m_decides);
        for (const auto& node : m_nodes) { // all, because each takes its answers
            const Truth one = node->combine(answer);
            if (one == m_decides || (one == Truth::Maybe && truth != m_decides))
                truth = one;
        }
        return truth;
    }
    void appendLeaves(std::vector<const FilterNode*>& leaves) const override
    {
        for (const auto& node : m_nodes)
            node->appendLeaves(leaves);
    }
    const TextFinder* required(std::size_t& size) const override
    {
        size = 0;
        const TextFinder* longest = nullptr;
        for (const auto& node : m_nodes) {
            std::size_t length = 0;
            const TextFinder* const finder = node->required(length);
            if (m_decides == Truth::No && length > size) {
                size = length;
                longest = finder;
            }
        }
        return longest;
    }

private:
    FilterNodes m_nodes;
    Truth m_decides;
};

std::shared_ptr<const FilterNode> listOf(FilterNodes nodes, Truth decides)
{
    if (nodes.size() == 1)
        return nodes.front();
    return std::make_shared<ListNode>(std::move(nodes), decides);
}

} // namespace

std::shared_ptr<const FilterNode> allOf(FilterNodes nodes)
{
    return listOf(std::move(nodes), Truth::No);
}

std::shared_ptr<const FilterNode> anyOf(FilterNodes nodes)
{
    return listOf(std::move(nodes), Truth::Yes);
}

std::shared_ptr<const FilterNode> notOf(std::shared_ptr<const FilterNode> node)
{
    return std::make_shared<NotNode>(std::move(node));
}

std::shared_ptr<const FilterNode> fieldNode(unsigned fields, std::unique_ptr<const TextTest> test)
{
    return std::make_shared<FieldNode>(fields, std::move(test));
}

std::shared_ptr<const FilterNode> numberNode(int from, int to)
{
    return std::make_shared<NumberNode>(from, to);
}

std::shared_ptr<const FilterNode> timeNode(std::int64_t from, std::int64_t before)
{
    return std::make_shared<TimeNode>(from, before);
}

std::unique_ptr<const TextTest> containsTest(const QString& text)
{
    return std::make_unique<ContainsTest>(text);
}

std::unique_ptr<const TextTest> valueTest(const QString& text, bool isExact)
{
    return std::make_unique<ValueTest>(text, isExact);
}

std::unique_ptr<const TextTest> patternTest(std::shared_ptr<const BytePattern> pattern,
                                            std::string literal, bool ignoreCase)
{
    return std::make_unique<PatternTest>(std::move(pattern), std::move(literal), ignoreCase);
}

} // namespace vlbase::logreading

#include "bytepattern.h"

#include <QRegularExpression>

#ifdef VLBASE_HAS_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#endif

#include <cstdint>

namespace vlbase::logreading {
namespace {

#ifdef VLBASE_HAS_PCRE2

struct FreePcre
{
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};

class FastPattern : public BytePattern
{
public:
    static std::shared_ptr<const BytePattern> make(const QString& pattern, bool ignoreCase)
    {
        const QByteArray bytes = pattern.toUtf8();
        const std::uint32_t options =
            PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF | (ignoreCase ? PCRE2_CASELESS : 0u);
        int error = 0;
        PCRE2_SIZE place = 0;
        auto made = std::make_shared<FastPattern>();
        made->m_code.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(bytes.constData()),
                                         static_cast<PCRE2_SIZE>(bytes.size()), options, &error,
                                         &place, nullptr));
        if (!made->m_code)
            return nullptr;
        pcre2_jit_compile(made->m_code.get(), PCRE2_JIT_COMPLETE); // without it, it is slower
        return made;
    }

    bool isIn(std::string_view text) const override
    {
        // Where a match begins and ends is not asked for, so one pair of places is enough.
        thread_local const std::unique_ptr<pcre2_match_data, FreePcre> match(
            pcre2_match_data_create(1, nullptr));
        const char* const data = text.empty() ? "" : text.data();
        return match && pcre2_match(m_code.get(), reinterpret_cast<PCRE2_SPTR>(data), text.size(),
                                    0, 0, match.get(), nullptr) >= 0;
    }

private:
    std::unique_ptr<pcre2_code, FreePcre> m_code;
};

#endif

class QtPattern : public BytePattern
{
public:
    explicit QtPattern(QRegularExpression expression)
        : m_expression(std::move(expression))
    {
    }

    bool isIn(std::string_view text) const override
    {
        const QString decoded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        return m_expression.match(decoded).hasMatch();
    }

private:
    QRegularExpression m_expression;
};

/// Collects the longest run of characters that a match must have.
class LiteralCollector
{
public:
    explicit LiteralCollector(bool ignoreCase)
        : m_ignoresCase(ignoreCase)
    {
    }

    void add(char16_t c)
    {
        // The Kelvin sign is a "k" of another case, the long s an "s".
        const char16_t lower = c | 0x20;
        if (c >= 0x80 || (m_ignoresCase && (lower == u'k' || lower == u's')))
            end();
        else
            m_run += static_cast<char>(c);
    }
    /// What follows need not stand right behind.
    void end()
    {
        if (m_run.size() > m_longest.size())
            m_longest = m_run;
        m_run.clear();
    }
    /// The last character may be missing.
    void dropLast()
    {
        if (!m_run.empty())
            m_run.pop_back();
        end();
    }
    std::string take()
    {
        end();
        return m_longest;
    }

private:
    bool m_ignoresCase;
    std::string m_run;
    std::string m_longest;
};

/// The place of a class's closing bracket, or the end.
qsizetype endOfClass(const QString& pattern, qsizetype i)
{
    ++i;
    if (i < pattern.size() && pattern[i] == u'^')
        ++i;
    if (i < pattern.size() && pattern[i] == u']')
        ++i;
    for (; i < pattern.size() && pattern[i] != u']'; ++i) {
        if (pattern[i] == u'\\')
            ++i;
    }
    return i;
}

bool isAsciiWord(QChar c)
{
    return c.unicode() < 0x80 && c.isLetterOrNumber();
}

} // namespace

std::shared_ptr<const BytePattern> BytePattern::make(const QString& pattern, bool ignoreCase,
                                                     Fault& fault)
{
    QRegularExpression::PatternOptions options = QRegularExpression::UseUnicodePropertiesOption;
    if (ignoreCase)
        options |= QRegularExpression::CaseInsensitiveOption;
    QRegularExpression expression(pattern, options);
    if (!expression.isValid()) {
        fault = {expression.patternErrorOffset(), expression.errorString()};
        return nullptr;
    }
#ifdef VLBASE_HAS_PCRE2
    if (auto fast = FastPattern::make(pattern, ignoreCase))
        return fast;
#endif
    expression.optimize();
    return std::make_shared<QtPattern>(std::move(expression));
}

std::string literalOf(const QString& pattern, bool ignoreCase)
{
    // Alternatives, settings inside the pattern, quotes and classes in classes: not easily seen.
    for (const char16_t* hard : {u"|", u"(?", u"(*", u"\\Q", u"[:", u"[.", u"[="}) {
        if (pattern.contains(QStringView(hard)))
            return {};
    }
    LiteralCollector literal(ignoreCase);
    int depth = 0;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const char16_t c = pattern[i].unicode();
        switch (c) {
        case u'(':
            ++depth;
            literal.end();
            break;
        case u')':
            --depth;
            literal.end();
            break;
        case u'[':
            i = endOfClass(pattern, i);
            literal.end();
            break;
        case u'*':
        case u'?':
        case u'{':
            literal.dropLast();
            if (c == u'{') {
                const qsizetype close = pattern.indexOf(u'}', i);
                i = close < 0 ? i : close;
            }
            break;
        case u'+':
        case u'.':
        case u'^':
        case u'$':
            literal.end();
            break;
        case u'\\':
            ++i;
            if (i >= pattern.size() || isAsciiWord(pattern[i])) {
                // The escapes with arguments (\x41, \p{L}, \1): what follows is not text.
                return literal.take();
            }
            if (depth == 0)
                literal.add(pattern[i].unicode());
            break;
        default:
            if (depth == 0)
                literal.add(c);
        }
    }
    return literal.take();
}

} // namespace vlbase::logreading

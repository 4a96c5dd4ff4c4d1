#pragma once

#include "linefields.h"
#include "textfinder.h"

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace vlbase::logreading {

/// Where a filter's text is wrong.
struct FilterFault
{
    qsizetype column = 0; ///< from 1; one behind the end when something is missing there
    QString expected;     ///< "a value", "')'"
};

/// What is known of a line before it is read.
enum class Truth : std::uint8_t { No, Yes, Maybe };

/// The fields that many lines share; the index has a small number for each combination.
struct Sender
{
    std::string_view station;
    std::string_view module;
    std::string_view level;
};

class FilterNode;

/// Which lines somebody wants to see: a condition in the filter language. Cheap to copy; copies
/// share what never changes, so any thread may use any copy.
///
///     level:error,warning and not module:Scanner* and (carrier or /lost \d+/)
class Filter
{
public:
    /// Holds for all lines.
    Filter();

    /// \param now what times such as `-15m` are counted from
    /// \return nothing for a text that is no filter; \a fault tells the place then.
    static std::optional<Filter> parse(const QString& text, FilterFault& fault,
                                       const QDateTime& now = QDateTime::currentDateTimeUtc());

    /// Holds where both do.
    Filter operator&&(const Filter& other) const;

    bool holdsForAll() const { return m_root == nullptr; }
    bool holds(const LineFields& line) const;
    /// A text that every line has for which the filter holds; null when none is known. With it
    /// large files are searched at the speed of memory.
    const TextFinder* required() const;

private:
    friend class FilterPlan;

    std::shared_ptr<const FilterNode> m_root; // null: all lines
};

/// A filter that remembers its answers for the senders of one index. For one thread.
class FilterPlan
{
public:
    explicit FilterPlan(Filter filter);
    ~FilterPlan();
    FilterPlan(FilterPlan&&) noexcept;

    const Filter& filter() const { return m_filter; }

    /// Makes known what \a sender stands for: numbers are given from 0 on, without a gap.
    void addSender(const Sender& sender);
    std::size_t senders() const { return m_bySender.size(); }

    /// The answer for a line of which only this is known.
    /// \param sender a number that was made known
    Truth judge(std::size_t sender, int number, std::optional<std::int64_t> seconds) const
    {
        const Truth truth = m_bySender[sender];
        return truth == Truth::Maybe && m_asksColumns ? judgeColumns(sender, number, seconds)
                                                      : truth;
    }

private:
    Truth judgeColumns(std::size_t sender, int number, std::optional<std::int64_t> seconds) const;

    Filter m_filter;
    std::vector<const FilterNode*> m_leaves;
    std::vector<std::vector<Truth>> m_answers; // by sender, then by leaf
    std::vector<Truth> m_bySender;
    bool m_asksColumns = false;
};

/// What a filter may ask for: "number", "level" and the others, as the language spells them.
QStringList filterFields();

/// A value or a word as it must stand in a filter, in quotes where it needs them.
QString filterQuoted(const QString& text);

} // namespace vlbase::logreading

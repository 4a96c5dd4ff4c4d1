#include "filter.h"

#include "filternode.h"

#include <algorithm>
#include <utility>

namespace vlbase::logreading {

Filter::Filter() = default;

Filter Filter::operator&&(const Filter& other) const
{
    if (holdsForAll() || other.holdsForAll())
        return holdsForAll() ? other : *this;
    Filter both;
    both.m_root = allOf({m_root, other.m_root});
    return both;
}

bool Filter::holds(const LineFields& line) const
{
    return m_root == nullptr || m_root->holds(line);
}

const TextFinder* Filter::required() const
{
    std::size_t size = 0;
    return m_root == nullptr ? nullptr : m_root->required(size);
}

FilterPlan::FilterPlan(Filter filter)
    : m_filter(std::move(filter))
{
    if (m_filter.m_root)
        m_filter.m_root->appendLeaves(m_leaves);
    m_asksColumns = std::any_of(m_leaves.begin(), m_leaves.end(),
                                [](const FilterNode* leaf) { return leaf->asksColumns(); });
}

FilterPlan::~FilterPlan() = default;
FilterPlan::FilterPlan(FilterPlan&&) noexcept = default;

void FilterPlan::addSender(const Sender& sender)
{
    std::vector<Truth> answers;
    answers.reserve(m_leaves.size());
    for (const FilterNode* leaf : m_leaves)
        answers.push_back(leaf->holdsFor(sender));
    const Truth* next = answers.data();
    m_bySender.push_back(m_filter.m_root ? m_filter.m_root->combine(next) : Truth::Yes);
    m_answers.push_back(std::move(answers));
}

Truth FilterPlan::judgeColumns(std::size_t sender, int number,
                               std::optional<std::int64_t> seconds) const
{
    thread_local std::vector<Truth> answers;
    answers = m_answers[sender];
    for (std::size_t i = 0; i < answers.size(); ++i) {
        if (m_leaves[i]->asksColumns())
            answers[i] = m_leaves[i]->holdsAt(number, seconds);
    }
    const Truth* next = answers.data();
    return m_filter.m_root->combine(next);
}

} // namespace vlbase::logreading

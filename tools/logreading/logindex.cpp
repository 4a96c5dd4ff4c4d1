#include "logindex.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace vlbase::logreading {
namespace {

constexpr std::uint32_t noTime = 0;
constexpr std::uint32_t otherTime = std::numeric_limits<std::uint32_t>::max();

std::uint32_t packed(std::optional<std::int64_t> seconds)
{
    if (!seconds)
        return noTime;
    return *seconds > noTime && *seconds < otherTime ? static_cast<std::uint32_t>(*seconds)
                                                     : otherTime;
}

} // namespace

IndexedLine IndexBlock::line(std::uint32_t row) const
{
    IndexedLine line;
    line.begin = begin(row);
    line.end = end(row);
    line.number = static_cast<int>(m_numbers[row]);
    line.sender = m_senders[row];
    line.isVague = m_seconds[row] == otherTime || line.sender == otherSender;
    if (m_seconds[row] != noTime && m_seconds[row] != otherTime)
        line.seconds = m_seconds[row];
    return line;
}

bool IndexBlock::append(std::int64_t end, int number, std::optional<std::int64_t> seconds,
                        std::uint16_t sender)
{
    const std::uint32_t row = m_size.load(std::memory_order_relaxed);
    const std::int64_t offset = end - m_base;
    if (row == capacity || offset > std::numeric_limits<std::uint32_t>::max())
        return false;
    m_offsets[row + 1] = static_cast<std::uint32_t>(offset);
    m_seconds[row] = packed(seconds);
    m_numbers[row] = static_cast<std::uint32_t>(number);
    m_senders[row] = sender;
    m_size.store(row + 1, std::memory_order_release);
    return true;
}

std::size_t IndexView::pieceOf(std::int64_t row) const
{
    const auto behind = std::upper_bound(m_firsts.begin(), m_firsts.end(), row);
    return static_cast<std::size_t>(std::distance(m_firsts.begin(), behind)) - 1;
}

IndexView::Piece IndexView::piece(std::size_t number) const
{
    const std::int64_t first = m_firsts[number];
    const std::int64_t next = number + 1 < m_firsts.size() ? m_firsts[number + 1] : m_size;
    return {m_blocks[number].get(), first, static_cast<std::uint32_t>(next - first)};
}

IndexedLine IndexView::line(std::int64_t row) const
{
    const Piece found = piece(pieceOf(row));
    return found.block->line(static_cast<std::uint32_t>(row - found.first));
}

std::int64_t IndexView::rowAt(std::int64_t place) const
{
    std::int64_t low = 0;
    std::int64_t high = m_size;
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (line(middle).begin <= place)
            low = middle + 1;
        else
            high = middle;
    }
    return low - 1;
}

LogIndex::LogIndex()
{
    m_senders.push_back(std::make_unique<const std::string>());
}

void LogIndex::append(std::string_view line, std::int64_t end)
{
    int number = 0;
    std::uint16_t sender = IndexBlock::noSender;
    std::optional<std::int64_t> seconds;
    if (const auto head = headOf(line)) {
        number = head->number;
        sender = senderOf(head->sender);
        seconds = secondsOf(head->time, line);
    }
    if (m_blocks.empty() || !m_blocks.back()->append(end, number, seconds, sender)) {
        auto block = std::make_shared<IndexBlock>(m_end);
        block->append(end, number, seconds, sender);
        const std::lock_guard lock(m_mutex);
        m_blocks.push_back(std::move(block));
        m_firsts.push_back(m_size.load(std::memory_order_relaxed));
    }
    m_end = end;
    m_size.fetch_add(1, std::memory_order_release);
}

void LogIndex::forget(std::int64_t row)
{
    const std::lock_guard lock(m_mutex);
    std::ptrdiff_t count = 0;
    while (static_cast<std::size_t>(count) + 1 < m_firsts.size() &&
           m_firsts[static_cast<std::size_t>(count) + 1] <= row)
        ++count;
    m_blocks.erase(m_blocks.begin(), m_blocks.begin() + count);
    m_firsts.erase(m_firsts.begin(), m_firsts.begin() + count);
}

IndexView LogIndex::view() const
{
    const std::lock_guard lock(m_mutex);
    IndexView view;
    view.m_firsts = m_firsts;
    view.m_blocks.assign(m_blocks.begin(), m_blocks.end());
    view.m_size = m_blocks.empty() ? 0 : m_firsts.back() + m_blocks.back()->size();
    return view;
}

std::size_t LogIndex::senders() const
{
    const std::lock_guard lock(m_mutex);
    return m_senders.size();
}

Sender LogIndex::sender(std::size_t number) const
{
    std::string_view key;
    {
        const std::lock_guard lock(m_mutex);
        if (number >= m_senders.size())
            return {};
        key = *m_senders[number];
    }
    if (number == IndexBlock::noSender)
        return {};
    const std::size_t module = key.find('\t') + 1;
    const std::size_t level = key.find('\t', module) + 1;
    return {key.substr(0, module - 1), key.substr(module, level - 1 - module), key.substr(level)};
}

void LogIndex::teach(FilterPlan& plan) const
{
    const std::size_t count = senders();
    while (plan.senders() < count)
        plan.addSender(sender(plan.senders()));
}

std::uint16_t LogIndex::senderOf(std::string_view key)
{
    if (key == m_lastKey)
        return m_lastSender;
    const auto known = m_numbers.find(key);
    if (known != m_numbers.end()) {
        m_lastKey = known->first;
        m_lastSender = known->second;
        return m_lastSender;
    }
    if (m_senders.size() == IndexBlock::otherSender)
        return IndexBlock::otherSender;
    auto text = std::make_unique<const std::string>(key);
    const auto number = static_cast<std::uint16_t>(m_senders.size());
    m_numbers.emplace(*text, number);
    const std::lock_guard lock(m_mutex);
    m_senders.push_back(std::move(text));
    return number;
}

/// Most lines have the second of the line before them.
std::optional<std::int64_t> LogIndex::secondsOf(std::string_view time, std::string_view line)
{
    if (time != m_lastTime) {
        m_lastTime = time;
        m_lastSeconds = fieldsOf(line, m_scratch).seconds;
    }
    return m_lastSeconds;
}

} // namespace vlbase::logreading

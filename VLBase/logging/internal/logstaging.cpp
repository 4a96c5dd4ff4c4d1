#include "logstaging.h"

#include <algorithm>
#include <cstring>

namespace vlbase::logging {

namespace {
constexpr std::uint64_t farthest = std::uint64_t(1) << 62; // so that no sum overflows
}

LogStaging::LogStaging(Control* control, char* ring, std::size_t size)
    : m_control(control)
    , m_ring(ring)
    , m_size(size)
{
}

std::uint64_t LogStaging::nextRound(std::uint64_t end) const
{
    return (end + m_size - 1) / m_size * m_size;
}

// Whether the lines from \a begin to \a end leave out the rest of the round after \a at.
bool LogStaging::skips(std::uint64_t at, std::uint64_t begin, std::uint64_t end) const
{
    return m_size > 0 && at >= begin && at % m_size != 0 && nextRound(at) < end;
}

bool LogStaging::take(LogImage& image)
{
    if (m_size == 0)
        return false;
    const int fill = image.fill(1);
    const auto bytes = static_cast<std::uint64_t>(fill);
    const std::uint64_t end = m_control->taken.load(std::memory_order_relaxed);
    const std::uint64_t written = m_control->written.load(std::memory_order_acquire);

    // An empty ring begins anew at its start, which is still in the processor's cache.
    const bool empty = written == end;
    const bool skip = !empty && end % m_size + bytes > m_size;
    const std::uint64_t begin = skip || empty ? nextRound(end) : end;
    if (begin + bytes - (empty ? begin : written) > m_size)
        return false;
    std::memcpy(m_ring + begin % m_size, image.half(1), bytes);

    // A mark at the present end may also be left from a move that was never completed.
    if (skip)
        m_control->skipAt.store(end, std::memory_order_relaxed);
    else if (m_control->skipAt.load(std::memory_order_relaxed) == end)
        m_control->skipAt.store(0, std::memory_order_relaxed);
    m_control->moveBytes.store(bytes, std::memory_order_relaxed);
    m_control->moveEnd.store(begin + bytes, std::memory_order_release);
    if (empty) // nobody else changes it then
        m_control->written.store(begin, std::memory_order_release);
    m_control->taken.store(begin + bytes, std::memory_order_release);
    // Others may have emptied the half while we were stopped; what they wrote since is theirs.
    image.emptyIf(1, fill);
    m_control->moveEnd.store(0, std::memory_order_release);
    return true;
}

void LogStaging::finishMove(LogImage& image)
{
    const std::uint64_t end = m_control->moveEnd.load(std::memory_order_acquire);
    const std::uint64_t bytes = m_control->moveBytes.load(std::memory_order_relaxed);
    if (end == 0 || m_size == 0)
        return;
    if (end == m_control->taken.load(std::memory_order_acquire) && bytes <= end &&
        bytes <= static_cast<std::uint64_t>(image.fill(1)) &&
        (end - bytes) % m_size + bytes <= m_size &&
        std::memcmp(image.half(1), m_ring + (end - bytes) % m_size, bytes) == 0)
        image.dropFront(1, static_cast<int>(bytes));
    m_control->moveEnd.store(0, std::memory_order_release);
}

std::string_view LogStaging::pending() const
{
    const std::uint64_t end = m_control->taken.load(std::memory_order_acquire);
    std::uint64_t begin = m_control->written.load(std::memory_order_relaxed);
    if (m_size == 0 || begin >= end ||
        end >= farthest) // ahead for a moment while the ring begins anew
        return {};
    std::uint64_t stop = end;
    // Read once: whatever others write there meanwhile, the piece lies in the ring.
    const std::uint64_t at = m_control->skipAt.load(std::memory_order_relaxed);
    if (skips(at, begin, end)) {
        if (at == begin)
            begin = nextRound(at);
        else
            stop = at;
    }
    stop = std::min(stop, nextRound(begin + 1));
    return {m_ring + begin % m_size, static_cast<std::size_t>(stop - begin)};
}

void LogStaging::markWritten(std::size_t bytes)
{
    const std::string_view lines = pending();
    if (lines.empty())
        return;
    const std::uint64_t written = m_control->written.load(std::memory_order_relaxed);
    // The distance also leaps over what was skipped.
    const auto place = static_cast<std::uint64_t>(lines.data() - m_ring);
    const std::uint64_t begin = written + (place + m_size - written % m_size) % m_size;
    m_control->written.store(begin + std::min(bytes, lines.size()), std::memory_order_release);
}

std::size_t LogStaging::bytes() const
{
    const std::uint64_t end = m_control->taken.load(std::memory_order_acquire);
    const std::uint64_t begin = m_control->written.load(std::memory_order_acquire);
    if (begin >= end)
        return 0;
    const std::uint64_t at = m_control->skipAt.load(std::memory_order_relaxed);
    const std::uint64_t skipped = skips(at, begin, end) ? nextRound(at) - at : 0;
    return static_cast<std::size_t>(end - begin - skipped);
}

void LogStaging::discardIfDamaged()
{
    const std::uint64_t end = m_control->taken.load();
    const std::uint64_t begin = m_control->written.load();
    const bool counts = begin <= end && end - begin <= m_size && end < farthest;
    const std::string_view lines = counts ? pending() : std::string_view();
    const bool inside =
        lines.empty() || (lines.data() >= m_ring && lines.size() <= m_size &&
                          lines.data() + lines.size() <= m_ring + m_size && lines.back() == '\0');
    if (counts && inside)
        return;
    m_control->taken = 0;
    m_control->written = 0;
    m_control->skipAt = 0;
    m_control->moveEnd = 0;
}

} // namespace vlbase::logging

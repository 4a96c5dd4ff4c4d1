#include "logreserve.h"

#include <VLBase/logging/internal/linehash.h>
#include <VLBase/logging/internal/lineindex.h>
#include <VLBase/logging/internal/prefetch.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace vlbase::logging {

namespace {

constexpr char signature[16] = {'V', 'L', 'B', 'a', 's', 'e', ' ', 'r',
                                'e', 's', 'e', 'r', 'v', 'e', ' ', '1'};

constexpr std::size_t pageSize = 4096;
constexpr std::size_t injectedCount = 4096;
constexpr std::size_t sealsAt = pageSize;
constexpr std::size_t injectedAt = sealsAt + numberPeriod * sizeof(std::uint64_t);
constexpr std::size_t stagingAt =
    (injectedAt + injectedCount * sizeof(std::uint64_t) + pageSize - 1) / pageSize * pageSize;

// How far apart writers can be that take numbers at the same time, without the mutex.
constexpr std::uint64_t maximumCrowd = 4096;

static_assert(sizeof(std::atomic<std::uint64_t>) == 8 &&
              std::atomic<std::uint64_t>::is_always_lock_free);

} // namespace

struct LogReserve::Header
{
    char signature[16];
    std::uint64_t stagingBytes;
    std::atomic<std::uint32_t> ownerHasClaim;
    std::atomic<std::uint32_t> hasHung;
    alignas(64) std::atomic<std::uint64_t> nextPosition;
    alignas(64) LogStaging::Control staging;
    std::atomic<std::uint64_t> jumpBegin; // what the last jump left out
    std::atomic<std::uint64_t> jumpEnd;
};

std::size_t LogReserve::sizeFor(std::size_t stagingBytes)
{
    static_assert(sizeof(Header) <= pageSize);
    return stagingAt + stagingBytes;
}

bool LogReserve::isReserve(const void* base, std::size_t size)
{
    const auto* const header = static_cast<const Header*>(base);
    return size >= stagingAt && std::memcmp(header->signature, signature, sizeof signature) == 0 &&
           header->stagingBytes <= size - stagingAt;
}

std::size_t LogReserve::stagingBytes(const void* base)
{
    return static_cast<const Header*>(base)->stagingBytes;
}

LogReserve::LogReserve(void* base, std::size_t size, LogImage image)
    : m_image(image)
    , m_header(static_cast<Header*>(base))
{
    char* const bytes = static_cast<char*>(base);
    m_seals = reinterpret_cast<std::atomic<std::uint64_t>*>(bytes + sealsAt);
    m_injected = reinterpret_cast<std::atomic<std::uint64_t>*>(bytes + injectedAt);
    // Others can have changed the size since it was checked.
    const std::size_t room = std::min<std::uint64_t>(m_header->stagingBytes, size - stagingAt);
    m_staging = LogStaging(&m_header->staging, bytes + stagingAt, room);
}

void LogReserve::format(void* base, std::size_t stagingBytes, const LogImage& image)
{
    std::memset(base, 0, stagingAt);
    auto* const header = new (base) Header{};
    header->stagingBytes = stagingBytes;
    header->nextPosition.exchange(slotOfCounter(image.index()).value_or(firstPosition));
    std::memcpy(header->signature, signature, sizeof signature);
}

// The counter in the image is the truth: writers of other makers know nothing else. Here is only
// remembered how many periods it has been through, for which a value that is a little behind or
// ahead, because others store theirs at the same time without the mutex, is good enough.
std::optional<std::uint64_t> LogReserve::takePosition(std::int32_t counter)
{
    const std::optional<std::uint64_t> slot = slotOfCounter(counter);
    if (!slot)
        return std::nullopt;
    std::atomic<std::uint64_t>& next = m_header->nextPosition;
    const std::uint64_t known = next.load(std::memory_order_relaxed);
    const std::uint64_t position = positionFrom(known, *slot);
    if (position - known > numberPeriod - maximumCrowd && position >= numberPeriod)
        return position - numberPeriod; // somebody with a later number was quicker
    next.store(position + 1, std::memory_order_relaxed);
    return position;
}

void LogReserve::jump(std::uint64_t reached, std::int32_t counter)
{
    const std::optional<std::uint64_t> slot = slotOfCounter(counter);
    if (!slot)
        return;
    const std::uint64_t position = positionFrom(reached, *slot);
    if (m_header->jumpEnd != reached) // otherwise one jump directly after another
        m_header->jumpBegin = reached;
    m_header->jumpEnd = position;
    m_header->nextPosition = position;
}

std::uint64_t LogReserve::leftOut(std::uint64_t begin, std::uint64_t end) const
{
    const std::uint64_t first = std::max<std::uint64_t>(begin, m_header->jumpBegin);
    const std::uint64_t last = std::min<std::uint64_t>(end, m_header->jumpEnd);
    return last > first ? last - first : 0;
}

std::uint64_t LogReserve::reached() const
{
    const std::uint64_t known = m_header->nextPosition.load(std::memory_order_relaxed);
    const std::optional<std::uint64_t> slot = slotOfCounter(m_image.index());
    if (!slot)
        return known;
    const std::uint64_t position = positionFrom(known, *slot);
    return position - known > numberPeriod - maximumCrowd ? known : position;
}

std::uint32_t LogReserve::sealHash(std::uint64_t lineHash)
{
    return static_cast<std::uint32_t>(lineHash >> 32);
}

// A seal is the number of the period, from 1, above the hash.
void LogReserve::seal(std::uint64_t position, std::string_view line)
{
    const std::uint64_t period = position / numberPeriod + 1;
    m_seals[position % numberPeriod].store(period << 32 | sealHash(lineHash(line)),
                                           std::memory_order_relaxed);
}

void LogReserve::prefetchSeal() const
{
    prefetchForWriting(&m_header->nextPosition);
    if (const std::optional<std::uint64_t> slot = slotOfCounter(m_image.index()))
        prefetchForWriting(&m_seals[*slot]);
}

std::optional<LogReserve::Seal> LogReserve::sealAt(std::uint64_t slot) const
{
    const std::uint64_t value = m_seals[slot].load(std::memory_order_relaxed);
    if (value >> 32 == 0)
        return std::nullopt;
    return Seal{((value >> 32) - 1) * numberPeriod + slot, static_cast<std::uint32_t>(value)};
}

// An entry is the hash with its lowest byte replaced by how often it was injected. Entries that
// share a place displace each other, which only makes an injected line look repeated.
namespace {
constexpr std::uint64_t timesMask = 0xFF;
}

void LogReserve::noteInjected(std::uint64_t lineHash)
{
    std::atomic<std::uint64_t>& entry = m_injected[lineHash >> 52];
    const std::uint64_t key = lineHash & ~timesMask;
    const std::uint64_t old = entry.load(std::memory_order_relaxed);
    const bool again = (old & ~timesMask) == key && (old & timesMask) < timesMask;
    entry.store(again ? old + 1 : key | 1, std::memory_order_relaxed);
}

bool LogReserve::takeInjected(std::uint64_t lineHash) const
{
    std::atomic<std::uint64_t>& entry = m_injected[lineHash >> 52];
    std::uint64_t old = entry.load(std::memory_order_relaxed);
    while ((old & ~timesMask) == (lineHash & ~timesMask) && (old & timesMask) != 0) {
        if (entry.compare_exchange_weak(old, old - 1, std::memory_order_relaxed))
            return true;
    }
    return false;
}

bool LogReserve::isInjected(std::uint64_t lineHash) const
{
    const std::uint64_t entry = m_injected[lineHash >> 52].load(std::memory_order_relaxed);
    return (entry & ~timesMask) == (lineHash & ~timesMask) && (entry & timesMask) != 0;
}

bool LogReserve::hasHung() const
{
    return m_header->hasHung.load(std::memory_order_relaxed) != 0;
}

void LogReserve::noteHang()
{
    m_header->hasHung.store(1, std::memory_order_relaxed);
}

bool LogReserve::ownerHasClaim() const
{
    return m_header->ownerHasClaim.load() != 0;
}

void LogReserve::setOwnerHasClaim(bool has)
{
    m_header->ownerHasClaim = has ? 1 : 0;
}

} // namespace vlbase::logging

#include "lineledger.h"

#include <VLBase/logging/internal/linehash.h>
#include <VLBase/logging/internal/lineindex.h>
#include <VLBase/logging/internal/logreserve.h>

#include <algorithm>
#include <limits>

namespace vlbase::logging {

namespace {
// Lines that are late or repeated lie at most as far behind as a half can hold.
constexpr std::uint64_t longestGap = 800000;
} // namespace

LineLedger::LineLedger()
    : LineLedger(nullptr)
{
}

LineLedger::LineLedger(const LogReserve* reserve)
    : m_reserve(reserve)
{
}

void LineLedger::startAtBeginning()
{
    m_next = firstPosition;
}

void LineLedger::resumeAfter(std::string_view lastLine)
{
    const std::optional<std::int32_t> number = numberOfLine(lastLine);
    if (!number)
        return;
    std::optional<std::uint64_t> position;
    for (const std::uint64_t slot : NumberSlots(*number)) {
        position = std::max(position, lastPositionOf(slot));
        if (const auto sealed = sealedPosition(slot, lineHash(lastLine))) {
            position = sealed;
            break;
        }
    }
    m_next = position ? std::optional(*position + 1) : std::nullopt;
}

LineLedger::Judgement LineLedger::judge(std::string_view line)
{
    const std::optional<std::int32_t> number = numberOfLine(line);
    if (!number)
        return isFragment(line) ? Judgement{Verdict::Torn, 0} : Judgement{};
    if (m_reserve) {
        const std::optional<Judgement> judgement = judgeSealed(line, *number);
        if (judgement)
            return *judgement;
    }
    return judgeByNumber(*number);
}

// The rear part of a spoilt line looks like one without a number.
bool LineLedger::isFragment(std::string_view line) const
{
    return m_reserve && m_reserve->hasHung() && !m_reserve->isInjected(lineHash(line));
}

// By the seals; nothing when the line's writer does not seal.
std::optional<LineLedger::Judgement> LineLedger::judgeSealed(std::string_view line,
                                                             std::int32_t number)
{
    const std::uint64_t hash = lineHash(line);
    bool repeated = false;
    for (const std::uint64_t slot : NumberSlots(number)) {
        const auto position = sealedPosition(slot, hash);
        if (!position)
            continue;
        if (!m_next || *position >= *m_next)
            return acceptAt(*position);
        repeated = true;
    }
    if (m_reserve->takeInjected(hash))
        return Judgement{};
    if (repeated)
        return Judgement{Verdict::Repeated, 0};
    for (const std::uint64_t slot : NumberSlots(number)) {
        if (awaitsOther(slot))
            return Judgement{Verdict::Torn, 0};
    }
    return std::nullopt;
}

// The nearest place ahead. What would lie beyond the last number given out, or most of a period
// ahead where that is not known, lies behind.
LineLedger::Judgement LineLedger::judgeByNumber(std::int32_t number)
{
    if (!m_next)
        m_next = lastPositionOf(*NumberSlots(number).begin());
    if (!m_next)
        return {};
    std::uint64_t nearest = std::numeric_limits<std::uint64_t>::max();
    for (const std::uint64_t slot : NumberSlots(number))
        nearest = std::min(nearest, positionFrom(*m_next, slot));
    const std::uint64_t end = m_reserve ? m_reserve->reached() : *m_next + longestGap;
    return nearest < end ? acceptAt(nearest) : Judgement{Verdict::Repeated, 0};
}

std::uint64_t LineLedger::lostBefore(std::uint64_t end) const
{
    if (!m_next || end <= *m_next)
        return 0;
    return end - *m_next - (m_reserve ? m_reserve->leftOut(*m_next, end) : 0);
}

LineLedger::Judgement LineLedger::acceptAt(std::uint64_t position)
{
    const std::uint64_t lost = lostBefore(position);
    m_next = position + 1;
    return {Verdict::Accept, lost};
}

std::optional<std::uint64_t> LineLedger::sealedPosition(std::uint64_t slot,
                                                        std::uint64_t lineHash) const
{
    const auto seal = m_reserve ? m_reserve->sealAt(slot) : std::nullopt;
    return seal && seal->hash == LogReserve::sealHash(lineHash) ? std::optional(seal->position)
                                                                : std::nullopt;
}

// Whether another line than the one at hand was sealed for this slot and is still to come. The
// seal of a later period has displaced that of the line at hand and says nothing about it.
bool LineLedger::awaitsOther(std::uint64_t slot) const
{
    const auto seal = m_reserve->sealAt(slot);
    if (!seal)
        return false;
    const std::uint64_t reached = m_reserve->reached();
    const std::uint64_t next = m_next.value_or(reached - std::min(reached, numberPeriod));
    return seal->position >= next && seal->position - next < numberPeriod;
}

// Where a number stood last; without a reserve any position that has the slot.
std::optional<std::uint64_t> LineLedger::lastPositionOf(std::uint64_t slot) const
{
    if (!m_reserve)
        return numberPeriod + slot;
    const std::uint64_t position = positionFrom(m_reserve->reached(), slot);
    return position >= numberPeriod ? std::optional(position - numberPeriod) : std::nullopt;
}

std::uint64_t LineLedger::lostUpTo(long nextIndex)
{
    const std::optional<std::uint64_t> slot = slotOfCounter(nextIndex);
    if (!slot)
        return 0;
    std::uint64_t end = 0;
    if (m_reserve) {
        // The number was read a little earlier than this.
        const std::uint64_t reached = m_reserve->reached();
        end = positionFrom(reached, *slot);
        if (end > reached)
            end -= std::min(end, numberPeriod);
    } else {
        end = m_next ? positionFrom(*m_next, *slot) : numberPeriod + *slot;
        if (m_next && end - *m_next > longestGap)
            return 0;
    }
    const std::uint64_t lost = lostBefore(end);
    m_next = std::max(m_next.value_or(end), end);
    return lost;
}

} // namespace vlbase::logging

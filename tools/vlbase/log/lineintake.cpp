#include "lineintake.h"

#include "linetext.h"
#include "logline.h"

#include <algorithm>
#include <utility>

namespace vlbase::tool::log {

LineIntake::LineIntake(logging::LineLedger ledger, std::string station)
    : m_ledger(std::move(ledger))
    , m_station(std::move(station))
{
}

void LineIntake::take(std::string_view lines, std::string& text)
{
    while (!lines.empty()) {
        const std::size_t length = std::min(lines.find('\0'), lines.size());
        takeLine(lines.substr(0, length), text);
        lines.remove_prefix(std::min(length + 1, lines.size()));
    }
}

void LineIntake::takeLine(std::string_view line, std::string& text)
{
    using Verdict = logging::LineLedger::Verdict;
    const auto judgement = m_ledger.judge(line);
    if (judgement.lostBefore > 0)
        noteLost(judgement.lostBefore, previousIndex(lineIndex(line)), text);
    if (judgement.verdict != Verdict::Accept)
        return;
    ++m_taken;
    appendClean(line, Cleaning::ForFile, text);
    text += '\n';
}

void LineIntake::settle(long nextIndex, std::string& text)
{
    const std::uint64_t lost = m_ledger.lostUpTo(nextIndex);
    if (lost > 0)
        noteLost(lost, previousIndex(static_cast<int>(nextIndex)), text);
}

void LineIntake::noteLost(std::uint64_t count, int last, std::string& text)
{
    m_lost += count;
    text += noticeLine(noticeOfLost(count, last), m_station);
}

} // namespace vlbase::tool::log

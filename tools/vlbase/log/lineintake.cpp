#include "lineintake.h"

#include <VLBase/logging/linetext.h>
#include <VLBase/logging/logline.h>

#include <utility>

namespace vlbase::tool::log {

LineIntake::LineIntake(logging::LineLedger ledger, std::string station)
    : m_ledger(std::move(ledger))
    , m_station(std::move(station))
{
}

void LineIntake::take(std::string_view lines, std::string& text)
{
    while (!lines.empty())
        judgeLine(logging::takeLine(lines), text);
}

void LineIntake::judgeLine(std::string_view line, std::string& text)
{
    using Verdict = logging::LineLedger::Verdict;
    const auto judgement = m_ledger.judge(line);
    if (judgement.lostBefore > 0)
        noteLost(judgement.lostBefore, logging::previousIndex(logging::lineIndex(line)), text);
    if (judgement.verdict != Verdict::Accept)
        return;
    ++m_taken;
    logging::appendClean(line, logging::Cleaning::ForFile, text);
    text += '\n';
}

void LineIntake::settle(long nextIndex, std::string& text)
{
    const std::uint64_t lost = m_ledger.lostUpTo(nextIndex);
    if (lost > 0)
        noteLost(lost, logging::previousIndex(static_cast<int>(nextIndex)), text);
}

void LineIntake::noteLost(std::uint64_t count, int last, std::string& text)
{
    m_lost += count;
    text += logging::noticeLine(logging::noticeOfLost(count, last), m_station);
}

} // namespace vlbase::tool::log

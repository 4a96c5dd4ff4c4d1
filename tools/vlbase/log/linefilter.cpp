#include "linefilter.h"

#include <algorithm>

namespace vlbase::tool::log {
namespace {

QString toText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

bool isOneOf(const QStringList& wanted, std::string_view text)
{
    return wanted.isEmpty() || wanted.contains(toText(text), Qt::CaseInsensitive);
}

} // namespace

bool LineFilter::passes(std::string_view text, const logging::LogLine* line) const
{
    const bool asksHeader = !m_levels.empty() || !m_modules.isEmpty() || !m_stations.isEmpty();
    if (asksHeader && (line == nullptr || !passesHeader(*line)))
        return false;
    return m_text.isEmpty() || toText(text).contains(m_text, Qt::CaseInsensitive);
}

bool LineFilter::passesHeader(const logging::LogLine& line) const
{
    if (!m_levels.empty()) {
        const auto level = logging::levelOf(line.level);
        if (!level || m_levels.count(*level) == 0)
            return false;
    }
    return isOneOf(m_modules, line.module) && isOneOf(m_stations, line.station);
}

} // namespace vlbase::tool::log

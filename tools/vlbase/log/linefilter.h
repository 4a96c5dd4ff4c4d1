#pragma once

#include <VLBase/logging/logline.h>

#include <QString>
#include <QStringList>

#include <set>
#include <string_view>
#include <vector>

namespace vlbase::tool::log {

/// Which lines a viewer wants to see. An empty condition holds for every line; a line that has no
/// header only passes where nothing is asked of it.
class LineFilter
{
public:
    void setLevels(std::set<logging::LogLevel> levels) { m_levels = std::move(levels); }
    /// Any of these, compared without regard to case.
    void setModules(const QStringList& modules) { m_modules = modules; }
    void setStations(const QStringList& stations) { m_stations = stations; }
    /// The whole line contains this, without regard to case.
    void setText(const QString& text) { m_text = text; }

    /// \param text the line as a whole
    /// \param line the same taken apart; null when it has no header
    bool passes(std::string_view text, const logging::LogLine* line) const;

private:
    bool passesHeader(const logging::LogLine& line) const;

    std::set<logging::LogLevel> m_levels;
    QStringList m_modules;
    QStringList m_stations;
    QString m_text;
};

} // namespace vlbase::tool::log

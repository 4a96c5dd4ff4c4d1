#include "columnrenderer.h"

#include <VLBase/logging/linetext.h>

#include <QDateTime>

#include <algorithm>
#include <iterator>
#include <utility>

namespace vlbase::tool::log {
namespace {

constexpr std::size_t widestStation = 20;
constexpr std::size_t widestModule = 28;
constexpr std::size_t levelWidth = 7; // "Warning"
constexpr std::string_view columnGap = "  ";
constexpr std::string_view fieldGap = " | ";

constexpr std::string_view resetCode = "\x1b[0m";
constexpr std::string_view dimCode = "\x1b[2m";
constexpr std::string_view lostCode = "\x1b[1;7;33m";

std::string_view codeOf(std::string_view levelWord)
{
    const auto level = logging::levelOf(levelWord);
    if (!level)
        return {};
    switch (*level) {
    case logging::LogLevel::Error:
        return "\x1b[1;31m";
    case logging::LogLevel::Warning:
        return "\x1b[33m";
    case logging::LogLevel::Event:
        return "\x1b[32m";
    case logging::LogLevel::Admin:
        return "\x1b[36m";
    case logging::LogLevel::Trace:
        return "\x1b[90m";
    case logging::LogLevel::Data:
        return "\x1b[35m";
    }
    return {};
}

std::size_t charactersIn(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

/// The first characters of a text that is valid UTF-8.
std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        const bool isStart = (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80;
        if (isStart && count-- == 0)
            break;
    }
    return text.substr(0, end);
}

class ColumnRenderer : public LineRenderer
{
public:
    ColumnRenderer(TimeShown time, Colour colour)
        : m_time(time)
        , m_colour(colour)
    {
    }

    void appendLine(const logging::LogLine& line, std::string& out) override
    {
        appendTime(line, out);
        out += columnGap;
        const std::string_view code = m_colour == Colour::PerLevel ? codeOf(line.level) : "";
        m_clean.clear();
        appendField(line.level, m_clean);
        appendPadded(m_clean, levelWidth, code, out);
        out += columnGap;
        appendName(line.station, widestStation, m_stationWidth, out);
        out += columnGap;
        appendName(line.module, widestModule, m_moduleWidth, out);
        out += columnGap;
        // Loud in full: what went wrong is the text, not the word.
        const bool isLoud = line.level == logging::levelWords[0] && !code.empty();
        if (isLoud)
            out += code;
        appendFields(line, out);
        if (isLoud)
            out += resetCode;
        out += '\n';
    }

    void appendText(std::string_view text, std::string& out) override
    {
        appendField(text, out);
        out += '\n';
    }

    void appendLost(const logging::OwnerNotice& lost, std::string& out) override
    {
        if (m_colour == Colour::PerLevel)
            out += lostCode;
        out += "--- " + std::to_string(lost.count) + (lost.count == 1 ? " line" : " lines") +
               " lost (" + std::to_string(lost.first);
        if (lost.count > 1)
            out += " to " + std::to_string(lost.last);
        out += ") ---";
        if (m_colour == Colour::PerLevel)
            out += resetCode;
        out += '\n';
    }

private:
    /// Clean, and a tab that is left, which would break the columns, as a blank.
    static void appendField(std::string_view field, std::string& out)
    {
        const auto start = static_cast<std::ptrdiff_t>(out.size());
        logging::appendClean(field, logging::Cleaning::ForTerminal, out);
        std::replace(out.begin() + start, out.end(), '\t', ' ');
    }

    void appendTime(const logging::LogLine& line, std::string& out)
    {
        if (!line.seconds) {
            appendField(line.time, out);
            return;
        }
        if (line.seconds != m_lastSeconds) {
            m_lastSeconds = line.seconds;
            const QDateTime utc = QDateTime::fromSecsSinceEpoch(*line.seconds, Qt::UTC);
            const QDateTime shown = m_time == TimeShown::Utc ? utc : utc.toLocalTime();
            m_lastTime = shown.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")).toStdString();
        }
        if (m_colour == Colour::PerLevel)
            out += dimCode;
        out += m_lastTime;
        if (m_colour == Colour::PerLevel)
            out += resetCode;
    }

    void appendName(std::string_view name, std::size_t widest, std::size_t& width, std::string& out)
    {
        m_clean.clear();
        appendField(name, m_clean);
        std::size_t characters = charactersIn(m_clean);
        if (characters > widest) {
            m_clean.resize(firstCharacters(m_clean, widest - 1).size());
            m_clean += "\u2026";
            characters = widest;
        }
        width = std::max(width, characters);
        appendPadded(m_clean, width, {}, out);
    }

    static void appendPadded(std::string_view text, std::size_t width, std::string_view code,
                             std::string& out)
    {
        const std::size_t characters = charactersIn(text);
        out += code;
        out += text;
        if (!code.empty())
            out += resetCode;
        out.append(width - std::min(width, characters), ' ');
    }

    static void appendFields(const logging::LogLine& line, std::string& out)
    {
        auto end = line.fields.end();
        while (end != line.fields.begin() && std::prev(end)->empty())
            --end;
        for (auto field = line.fields.begin(); field != end; ++field) {
            if (field != line.fields.begin())
                out += fieldGap;
            appendField(*field, out);
        }
    }

    TimeShown m_time;
    Colour m_colour;
    std::size_t m_stationWidth = 8;
    std::size_t m_moduleWidth = 12;
    std::optional<std::int64_t> m_lastSeconds;
    std::string m_lastTime;
    std::string m_clean;
};

} // namespace

std::unique_ptr<LineRenderer> makeColumnRenderer(TimeShown time, Colour colour)
{
    return std::make_unique<ColumnRenderer>(time, colour);
}

} // namespace vlbase::tool::log

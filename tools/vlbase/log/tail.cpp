#include "columnrenderer.h"
#include "instance.h"
#include "linefilter.h"
#include "terminationwatch.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/platform/standardstreams.h"
#include "tools/vlbase/platform/stopsignal.h"
#include "tools/vlbase/suggestion.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"
#include "viewerfeed.h"

#include <VLBase/logging/gapwatch.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>

namespace vlbase::tool::log {
namespace {

using std::chrono::steady_clock;

struct Settings
{
    LineFilter filter;
    TimeShown time = TimeShown::Local;
    Colour colour = Colour::Never;
    bool isJson = false;
    bool isQuiet = false;
    bool hasSummary = false;
    std::int64_t count = std::numeric_limits<std::int64_t>::max();
    double seconds = std::numeric_limits<double>::infinity();
};

void readFilter(CommandLine& line, LineFilter& filter)
{
    QStringList names;
    for (const std::string_view word : logging::levelWords)
        names << QString::fromLatin1(word.data(), static_cast<qsizetype>(word.size())).toLower();
    std::set<logging::LogLevel> levels;
    for (const QString& word : line.list(QStringLiteral("level"))) {
        const auto level = logging::levelOf(word.trimmed().toStdString(), true);
        if (level)
            levels.insert(*level);
        else
            line.addFault(
                QStringLiteral("--level: unknown level '%1'.%2 There are: %3")
                    .arg(word, didYouMean(word, names), names.join(QStringLiteral(", "))));
    }
    filter.setLevels(levels);
    filter.setModules(line.list(QStringLiteral("module")));
    filter.setStations(line.list(QStringLiteral("station")));
    filter.setText(line.value(QStringLiteral("grep")));
}

Settings readSettings(CommandLine& line)
{
    Settings settings;
    readFilter(line, settings.filter);
    if (line.isSet(QStringLiteral("local")) && line.isSet(QStringLiteral("utc")))
        line.addFault(QStringLiteral("--local and --utc exclude each other"));
    settings.time = line.isSet(QStringLiteral("utc")) ? TimeShown::Utc : TimeShown::Local;
    settings.isJson = line.isSet(QStringLiteral("json"));
    settings.isQuiet = line.isSet(QStringLiteral("quiet"));
    settings.hasSummary = line.isSet(QStringLiteral("summary"));
    settings.count = line.count(QStringLiteral("count"), settings.count, 1, settings.count);
    settings.seconds = line.seconds(QStringLiteral("seconds"), settings.seconds);
    const bool wantsColour = !settings.isJson && !line.isSet(QStringLiteral("no-color")) &&
                             qEnvironmentVariableIsEmpty("NO_COLOR");
    if (wantsColour && platform::isTerminal(platform::Stream::Output) &&
        platform::enableEscapeSequences())
        settings.colour = Colour::PerLevel;
    if (!line.positional().isEmpty())
        line.addFault(QStringLiteral("'%1' is not an option; --grep TEXT looks for a text")
                          .arg(line.positional().constFirst()));
    return settings;
}

/// Shows lines and counts what it showed.
class Viewer
{
public:
    explicit Viewer(const Settings& settings)
        : m_settings(settings)
        , m_renderer(settings.isJson ? makeJsonRenderer()
                                     : makeColumnRenderer(settings.time, settings.colour))
    {
    }

    /// \return false when the output takes no more or enough was shown.
    bool show(std::string_view lines)
    {
        m_output.clear();
        while (!lines.empty() && m_shown < m_settings.count)
            showLine(logging::takeLine(lines));
        const platform::WriteResult result =
            platform::writeAll(platform::Stream::Output, m_output.data(), m_output.size());
        if (result == platform::WriteResult::Failed)
            m_errorText = qt_error_string();
        return result == platform::WriteResult::Done && m_shown < m_settings.count;
    }

    /// Why the output failed; empty when it did not.
    const QString& errorText() const { return m_errorText; }

    void tellSummary() const
    {
        printError(QStringLiteral("%1 lines shown, %2 lost").arg(m_shown).arg(m_lost));
    }

private:
    void showLine(std::string_view text)
    {
        const bool hasHeader = logging::parseLogLine(text, m_line);
        if (hasHeader) {
            if (const auto lost = m_gaps.lookAt(m_line))
                showLost(*lost);
            const auto notice = logging::parseNotice(m_line);
            if (notice && notice->kind == logging::OwnerNotice::Kind::LinesLost) {
                showLost(*notice);
                return;
            }
            if (notice)
                return;
        }
        if (!m_settings.filter.passes(text, hasHeader ? &m_line : nullptr))
            return;
        ++m_shown;
        if (hasHeader)
            m_renderer->appendLine(m_line, m_output);
        else
            m_renderer->appendText(text, m_output);
    }

    void showLost(const logging::OwnerNotice& lost)
    {
        m_lost += lost.count;
        m_renderer->appendLost(lost, m_output);
    }

    const Settings& m_settings;
    std::unique_ptr<LineRenderer> m_renderer;
    logging::GapWatch m_gaps;
    logging::LogLine m_line;
    std::string m_output;
    std::int64_t m_shown = 0;
    std::uint64_t m_lost = 0;
    QString m_errorText;
};

int run(CommandLine& line)
{
    selectInstance(line);
    const Settings settings = readSettings(line);
    if (line.hasFault())
        return line.tellFault();

    const platform::StopSignal stop;
    const TerminationWatch termination;
    const auto started = steady_clock::now();
    const auto isOver = [&] {
        const std::chrono::duration<double> time = steady_clock::now() - started;
        return platform::StopSignal::requested() || time.count() >= settings.seconds;
    };
    Viewer viewer(settings);
    ViewerFeed feed([&](const QString& text) {
        if (!settings.isQuiet)
            line.tell(text);
    });
    std::string lines;
    bool isFinishing = false;
    while (feed.take(lines) && viewer.show(lines)) {
        if (!isFinishing && isOver()) {
            isFinishing = true;
            feed.finish();
        }
    }
    if (settings.hasSummary)
        viewer.tellSummary();
    if (!viewer.errorText().isEmpty()) {
        line.tell(QStringLiteral("cannot write to standard output: %1").arg(viewer.errorText()));
        return Failure;
    }
    return Success;
}

} // namespace

Command tailCommand()
{
    Command command;
    command.group = QStringLiteral("log");
    command.verb = QStringLiteral("tail");
    command.summary = QStringLiteral("shows the log as it grows, filtered and coloured");
    command.usage = QStringLiteral("[OPTION...]");
    command.about = QStringLiteral(
        "Shows the lines of the shared log as they come, until Ctrl-C or until an application has "
        "all others of the desktop quit: time, level, station, module and the event's fields. "
        "Without an owner it waits for one. The first viewer also "
        "shows the lines that are in the live buffer when it starts; each further one follows the "
        "owner's file, through its rotations, and so does the first one once the live buffer ran "
        "over, so every viewer sees every line.\n"
        "\n"
        "Where numbers are missing, it says how many lines were lost. Control characters are "
        "shown as their pictures, so no line can command the terminal.");
    command.options = {
        {QStringLiteral("level"), QStringLiteral("L,..."),
         QStringLiteral("Only lines of these levels: error, warning, event, admin, trace, data.")},
        {QStringLiteral("module"), QStringLiteral("M,..."),
         QStringLiteral("Only lines of these modules, in any case of letters.")},
        {QStringLiteral("station"), QStringLiteral("S,..."),
         QStringLiteral("Only lines of these stations, in any case of letters.")},
        {QStringLiteral("grep"), QStringLiteral("TEXT"),
         QStringLiteral("Only lines that contain TEXT, in any case of letters.")},
        {QStringLiteral("local"), {}, QStringLiteral("Shows the time of this place: the default.")},
        {QStringLiteral("utc"), {}, QStringLiteral("Shows the time as it is in the log, in UTC.")},
        {QStringLiteral("json"),
         {},
         QStringLiteral("Shows each line as a JSON object, times in UTC.")},
        {QStringLiteral("no-color"),
         {},
         QStringLiteral("No colours. They are on only in a terminal and without NO_COLOR in the "
                        "environment.")},
        {QStringLiteral("count"), QStringLiteral("N"),
         QStringLiteral("Ends after N lines were shown.")},
        {QStringLiteral("seconds"), QStringLiteral("S"), QStringLiteral("Ends after S seconds.")},
        {QStringLiteral("summary"),
         {},
         QStringLiteral("Tells at the end how many lines were shown and lost.")},
        {QStringLiteral("quiet"),
         {},
         QStringLiteral("Says nothing about owners that come and go.")},
        instanceOption(),
    };
    command.examples = {
        {QStringLiteral("what goes wrong, anywhere"),
         QStringLiteral("vlbase log tail --level error,warning")},
        {QStringLiteral("what one module does, for another program"),
         QStringLiteral("vlbase log tail --module \"Receiver 1\" --json | jq .fields")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::log

#include "columnrenderer.h"
#include "instance.h"
#include "logfiles.h"
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
    logreading::Filter filter;
    ViewerFeed::Start start;
    TimeShown time = TimeShown::Local;
    Colour colour = Colour::Never;
    bool isJson = false;
    bool isQuiet = false;
    bool hasSummary = false;
    std::int64_t count = std::numeric_limits<std::int64_t>::max();
    double seconds = std::numeric_limits<double>::infinity();
};

/// A shorthand's value as a part of a filter, such as `level:error,warning`.
QString valuesOf(CommandLine& line, const QString& name)
{
    QStringList values;
    for (const QString& value : line.list(name)) {
        if (value.trimmed().isEmpty())
            line.addFault(QStringLiteral("--%1 needs a value").arg(name));
        values << logreading::filterQuoted(value.trimmed());
    }
    return name + u':' + values.join(u',');
}

void checkLevels(CommandLine& line)
{
    QStringList names;
    for (const std::string_view word : logging::levelWords)
        names << QString::fromLatin1(word.data(), static_cast<qsizetype>(word.size())).toLower();
    for (const QString& word : line.list(QStringLiteral("level"))) {
        if (!logging::levelOf(word.trimmed().toStdString(), true))
            line.addFault(
                QStringLiteral("--level: unknown level '%1'.%2 There are: %3")
                    .arg(word, didYouMean(word, names), names.join(QStringLiteral(", "))));
    }
}

logreading::Filter filterOf(const QString& text, CommandLine& line)
{
    logreading::FilterFault fault;
    const auto filter = logreading::Filter::parse(text, fault);
    if (!filter)
        line.addFault(QStringLiteral("'%1': expected %2").arg(text, fault.expected));
    return filter.value_or(logreading::Filter());
}

logreading::Filter readFilter(CommandLine& line)
{
    logreading::Filter filter = readFilterOption(line);
    checkLevels(line);
    for (const char* name : {"level", "module", "station"}) {
        const QString option = QString::fromLatin1(name);
        if (line.isSet(option))
            filter = filter && filterOf(valuesOf(line, option), line);
    }
    if (line.isSet(QStringLiteral("grep")))
        filter =
            filter && filterOf(logreading::filterQuoted(line.value(QStringLiteral("grep"))), line);
    if (line.isSet(QStringLiteral("since")))
        filter =
            filter && filterOf(QStringLiteral("after:") +
                                   logreading::filterQuoted(line.value(QStringLiteral("since"))),
                               line);
    return filter;
}

Settings readSettings(CommandLine& line)
{
    Settings settings;
    settings.filter = readFilter(line);
    settings.start.lines = line.count(QStringLiteral("n"), 0, 0, 1'000'000'000);
    if (line.isSet(QStringLiteral("since")))
        settings.start.lines.reset();
    settings.start.file = line.value(QStringLiteral("file")).toStdString();
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
        if (!m_settings.filter.holds(logreading::fieldsOf(text, m_scratch)))
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
    logging::LogLine m_scratch;
    std::string m_output;
    std::int64_t m_shown = 0;
    std::uint64_t m_lost = 0;
    QString m_errorText;
};

/// \return null when it cannot be read, which is told then.
std::unique_ptr<logreading::LogFollower> openFile(const CommandLine& line,
                                                  const ViewerFeed::Start& start)
{
    auto follower = std::make_unique<logreading::LogFollower>(
        start.file, logreading::LogSeries::Extent::Rotated);
    QString reason;
    if (!follower->open(reason)) {
        line.tell(
            QStringLiteral("cannot read '%1': %2").arg(QString::fromStdString(start.file), reason));
        return nullptr;
    }
    if (start.lines)
        follower->startAtEnd(*start.lines);
    return follower;
}

int run(CommandLine& line)
{
    selectInstance(line);
    const Settings settings = readSettings(line);
    if (line.hasFault())
        return line.tellFault();

    std::unique_ptr<logreading::LogFollower> follower;
    if (!settings.start.file.empty()) {
        follower = openFile(line, settings.start);
        if (!follower)
            return WrongUse;
    }

    const platform::StopSignal stop;
    const TerminationWatch termination;
    const auto started = steady_clock::now();
    const auto isOver = [&] {
        const std::chrono::duration<double> time = steady_clock::now() - started;
        return platform::StopSignal::requested() || time.count() >= settings.seconds;
    };
    Viewer viewer(settings);
    ViewerFeed feed(settings.start, std::move(follower), [&](const QString& text) {
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
        "Without an owner it waits for one. It follows the owner's file, through its rotations, so "
        "every viewer sees every line. Only where that file cannot be read, one viewer shows the "
        "lines from the live buffer.\n"
        "\n"
        "Where numbers are missing, it says how many lines were lost. Control characters are "
        "shown as their pictures, so no line can command the terminal.");
    command.options = {
        filterOption(),
        {QStringLiteral("n"), QStringLiteral("N"),
         QStringLiteral("Begins with the last N lines that are there.")},
        {QStringLiteral("since"), QStringLiteral("T"),
         QStringLiteral("Begins with the first line of this time: 2026-11-22T10:15:02, in UTC "
                        "unless it has an offset, or -15m.")},
        {QStringLiteral("file"), QStringLiteral("F"),
         QStringLiteral("Follows this file, without a log.")},
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

#include "logfiles.h"
#include "tools/logreading/statistics.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <VLBase/logging/linetext.h>

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include <algorithm>

namespace vlbase::tool::log {
namespace {

using logreading::Statistics;
using Counts = std::map<std::string, std::int64_t>;

QString timeText(std::int64_t seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(Qt::ISODate);
}

QJsonObject objectOf(const Counts& counts)
{
    QJsonObject object;
    for (const auto& [name, count] : counts)
        object.insert(QString::fromStdString(name), static_cast<qint64>(count));
    return object;
}

QString jsonText(const Statistics& statistics)
{
    QJsonObject minutes;
    for (const auto& [minute, count] : statistics.byMinute)
        minutes.insert(timeText(minute * 60), static_cast<qint64>(count));
    const auto time = [](const std::optional<std::int64_t>& seconds) {
        return seconds ? QJsonValue(timeText(*seconds)) : QJsonValue();
    };
    const QJsonObject object{{QStringLiteral("lines"), static_cast<qint64>(statistics.lines)},
                             {QStringLiteral("lost"), static_cast<qint64>(statistics.lost)},
                             {QStringLiteral("first"), time(statistics.first)},
                             {QStringLiteral("last"), time(statistics.last)},
                             {QStringLiteral("levels"), objectOf(statistics.byLevel)},
                             {QStringLiteral("stations"), objectOf(statistics.byStation)},
                             {QStringLiteral("modules"), objectOf(statistics.byModule)},
                             {QStringLiteral("minutes"), minutes}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n';
}

QString shownName(const std::string& name)
{
    std::string clean;
    logging::appendClean(name, logging::Cleaning::ForTerminal, clean);
    return clean.empty() ? QStringLiteral("(none)") : QString::fromStdString(clean);
}

/// The names with their counts, the most frequent first.
QString table(const QString& title, const Counts& counts)
{
    std::vector<std::pair<std::string, std::int64_t>> rows(counts.begin(), counts.end());
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    QString text = title + u'\n';
    for (const auto& [name, count] : rows)
        text += QStringLiteral("%1  %2\n").arg(count, 12).arg(shownName(name));
    return text;
}

QString plainText(const Statistics& statistics)
{
    QString text = QStringLiteral("%1 lines, %2 lost\n").arg(statistics.lines).arg(statistics.lost);
    if (statistics.first)
        text += QStringLiteral("%1 to %2\n")
                    .arg(timeText(*statistics.first), timeText(*statistics.last));
    text += table(QStringLiteral("by level"), statistics.byLevel);
    text += table(QStringLiteral("by station"), statistics.byStation);
    text += table(QStringLiteral("by module"), statistics.byModule);
    text += QStringLiteral("by minute\n");
    for (const auto& [minute, count] : statistics.byMinute)
        text += QStringLiteral("%1  %2\n").arg(count, 12).arg(timeText(minute * 60));
    return text;
}

int run(CommandLine& line)
{
    const logreading::Filter filter = readFilterOption(line);
    if (line.positional().isEmpty())
        line.addFault(QStringLiteral("which file?"));
    if (line.hasFault())
        return line.tellFault();
    std::vector<logreading::LogView> logs;
    const bool isGood = readLogs(line, logreading::LogSeries::Extent::Rotated, logs);
    Statistics statistics;
    for (const logreading::LogView& log : logs)
        statistics.add(log, filter);
    const bool isJson = line.isSet(QStringLiteral("json"));
    if (!print(isJson ? jsonText(statistics) : plainText(statistics)) || !isGood)
        return WrongUse;
    return statistics.lines > 0 ? Success : Failure;
}

} // namespace

Command statsCommand()
{
    Command command;
    command.group = QStringLiteral("log");
    command.verb = QStringLiteral("stats");
    command.summary =
        QStringLiteral("counts the lines of log files by level, station, module, minute");
    command.usage = QStringLiteral("[OPTION...] FILE...");
    command.about = QStringLiteral(
        "Counts the lines of log files, each with the older ones of its rotation: by level, "
        "station, module and minute (UTC), the first and the last time, and how many lines are "
        "missing in all.\n"
        "\n"
        "The exit status is 0 when there were lines, 1 when there were none, 2 when a file could "
        "not be read.");
    command.options = {
        filterOption(),
        {QStringLiteral("json"), {}, QStringLiteral("As one JSON object.")},
    };
    command.examples = {
        {QStringLiteral("who reports errors"),
         QStringLiteral("vlbase log stats --filter level:error north.log")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::log

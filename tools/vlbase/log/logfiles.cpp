#include "logfiles.h"

#include <QDir>

namespace vlbase::tool::log {

using logreading::LogSeries;

Option filterOption()
{
    return {QStringLiteral("filter"), QStringLiteral("TEXT"),
            QStringLiteral("Only lines for which it holds: words, /patterns/ and fields (number, "
                           "level, station, module, text, field1 to field3, after, before) with "
                           "values, joined by 'and', 'or', 'not' and brackets.")};
}

logreading::Filter readFilterOption(CommandLine& line)
{
    const QString text = line.value(QStringLiteral("filter"));
    logreading::FilterFault fault;
    const auto filter = logreading::Filter::parse(text, fault);
    if (filter)
        return *filter;
    QString shown = text;
    shown.replace(u'\n', u' ').replace(u'\t', u' ');
    line.addFault(QStringLiteral("--filter, column %1: expected %2\n  %3\n  %4^")
                      .arg(fault.column)
                      .arg(fault.expected, shown, QString(fault.column - 1, u' ')));
    return {};
}

bool readLogs(const CommandLine& line, LogSeries::Extent extent,
              std::vector<logreading::LogView>& logs)
{
    bool isGood = true;
    const auto tell = [&](const QString& name, const QString& reason) {
        line.tell(
            QStringLiteral("cannot read '%1': %2").arg(QDir::toNativeSeparators(name), reason));
        isGood = false;
    };
    for (const QString& name : line.positional()) {
        LogSeries series(name.toStdString(), extent);
        QString reason;
        if (!series.open(reason)) {
            tell(name, reason);
            continue;
        }
        // What its owner writes meanwhile belongs to it; what it writes later does not.
        auto update = series.update();
        while (update != LogSeries::Update::Unchanged && update != LogSeries::Update::Failed)
            update = series.update();
        if (update == LogSeries::Update::Failed)
            tell(name, series.errorText());
        series.takeHalfLines();
        logs.push_back(series.view());
    }
    return isGood;
}

} // namespace vlbase::tool::log

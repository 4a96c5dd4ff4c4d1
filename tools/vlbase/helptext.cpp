#include "command.h"
#include "textoutput.h"

#include <algorithm>

namespace vlbase::tool {
namespace {

constexpr int lineWidth = 88;

QString optionTitle(const Option& option)
{
    const QString dashes = option.name.size() > 1 ? QStringLiteral("--") : QStringLiteral("-");
    return (dashes + option.name + u' ' + option.value).trimmed();
}

/// Two columns, the first as wide as its longest entry.
QString table(const std::vector<std::pair<QString, QString>>& rows)
{
    qsizetype width = 0;
    for (const auto& row : rows)
        width = std::max(width, row.first.size());
    QString text;
    for (const auto& [title, content] : rows) {
        const int indent = static_cast<int>(width) + 4;
        text += QStringLiteral("  %1  %2\n")
                    .arg(title.leftJustified(width), wrapped(content, lineWidth, indent));
    }
    return text;
}

} // namespace

QString helpText(const Command& command)
{
    QString text = QStringLiteral("Usage: %1 %2\n\n").arg(command.fullName(), command.usage);
    text += wrapped(command.about, lineWidth) + u'\n';

    std::vector<std::pair<QString, QString>> options;
    for (const Option& option : command.options)
        options.emplace_back(optionTitle(option), option.text);
    options.emplace_back(QStringLiteral("--help"), QStringLiteral("Shows this help."));
    text += QStringLiteral("\nOptions:\n") + table(options);

    std::vector<std::pair<QString, QString>> statuses = {
        {QStringLiteral("0"), QStringLiteral("done")},
        {QStringLiteral("1"), QStringLiteral("it failed; standard error says why")},
        {QStringLiteral("2"), QStringLiteral("wrong use: an unknown option, a bad number")},
    };
    statuses.insert(statuses.end(), command.exitStatuses.begin(), command.exitStatuses.end());
    text += QStringLiteral("\nExit status:\n") + table(statuses);

    text += QStringLiteral("\nExamples:\n");
    for (const auto& [purpose, line] : command.examples)
        text += QStringLiteral("  # %1\n  %2\n").arg(purpose, line);
    return text;
}

} // namespace vlbase::tool

#include "command.h"
#include "commandline.h"
#include "exitstatus.h"
#include "suggestion.h"
#include "textoutput.h"

#include <QCoreApplication>

#include <algorithm>

namespace vlbase::tool {
namespace {

QStringList groups()
{
    QStringList names;
    for (const Command& command : allCommands()) {
        if (!names.contains(command.group))
            names << command.group;
    }
    return names;
}

QStringList verbsOf(const QString& group)
{
    QStringList names;
    for (const Command& command : allCommands()) {
        if (command.group == group)
            names << command.verb;
    }
    return names;
}

/// The verbs of one group, or of all with an empty name.
QString overview(const QString& onlyGroup)
{
    QString text = QStringLiteral("Usage: vlbase %1 VERB [OPTION...] [ARGUMENT...]\n\n")
                       .arg(onlyGroup.isEmpty() ? QStringLiteral("GROUP") : onlyGroup);
    qsizetype width = 0;
    for (const Command& command : allCommands())
        width = std::max(width, command.name().size());
    for (const Command& command : allCommands()) {
        if (!onlyGroup.isEmpty() && command.group != onlyGroup)
            continue;
        text +=
            QStringLiteral("  %1  %2\n").arg(command.name().leftJustified(width), command.summary);
    }
    const QString& shown = onlyGroup.isEmpty() ? allCommands().front().group : onlyGroup;
    text += QStringLiteral("\n'vlbase %1 %2 --help' tells all about a verb, 'vlbase --version' "
                           "the version.\n")
                .arg(shown, verbsOf(shown).constFirst());
    return text;
}

int tellWrongWord(const QString& kind, const QString& typed, const QStringList& words)
{
    printError(QStringLiteral("vlbase: unknown %1 '%2'.%3 There are: %4.")
                   .arg(kind, typed, didYouMean(typed, words), words.join(QStringLiteral(", "))));
    return WrongUse;
}

bool asksForHelp(const QString& word)
{
    return word == u"--help" || word == u"-h" || word == u"help";
}

int runVerb(const Command& command, const QStringList& arguments)
{
    CommandLine line(command);
    if (const auto status = line.parse(arguments))
        return *status;
    return command.run(line);
}

int runGroup(const QString& group, const QStringList& arguments)
{
    for (const Command& command : allCommands()) {
        if (command.group == group && command.verb.isEmpty())
            return runVerb(command, arguments);
    }
    if (arguments.isEmpty()) {
        printError(QStringLiteral("vlbase %1: which verb?\n\n").arg(group) +
                   overview(group).trimmed());
        return WrongUse;
    }
    const QString& verb = arguments.constFirst();
    if (asksForHelp(verb)) {
        // "vlbase log help tail" as well as "vlbase log tail --help".
        if (arguments.size() > 1)
            return runGroup(group, {arguments[1], QStringLiteral("--help")});
        return print(overview(group)) ? Success : Failure;
    }
    for (const Command& command : allCommands()) {
        if (command.group == group && command.verb == verb)
            return runVerb(command, arguments.sliced(1));
    }
    return tellWrongWord(QStringLiteral("verb of '%1'").arg(group), verb, verbsOf(group));
}

} // namespace

int runProgram(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        printError(overview({}).trimmed());
        return WrongUse;
    }
    const QString& word = arguments.constFirst();
    if (asksForHelp(word)) {
        if (arguments.size() > 1)
            return runProgram(arguments.sliced(1) << QStringLiteral("--help"));
        return print(overview({})) ? Success : Failure;
    }
    if (word == u"--version") {
        const QString version = QCoreApplication::applicationVersion();
        return print(QStringLiteral("vlbase %1\n").arg(version)) ? Success : Failure;
    }
    if (word.startsWith(u'-')) {
        const QStringList options = {QStringLiteral("--help"), QStringLiteral("--version")};
        return tellWrongWord(QStringLiteral("option"), word, options);
    }
    if (!groups().contains(word))
        return tellWrongWord(QStringLiteral("group"), word, groups());
    return runGroup(word, arguments.sliced(1));
}

} // namespace vlbase::tool

#pragma once

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace vlbase::tool {

class CommandLine;

/// An option of a verb. One with a value says in `value` what it takes ("BYTES").
struct Option
{
    QString name;
    QString value;
    QString text;
};

/// A verb of the program: what its help says and what it does.
struct Command
{
    QString group;   ///< "log"
    QString verb;    ///< "own"; empty when the group itself is the command
    QString summary; ///< one line for the list of verbs
    QString usage;   ///< what follows the verb: "[OPTION...] LEVEL TEXT"
    QString about;   ///< paragraphs, one line each, wrapped when shown
    std::vector<Option> options;
    std::vector<std::pair<QString, QString>> exitStatuses; ///< besides 0, 1 and 2
    std::vector<std::pair<QString, QString>> examples;     ///< what for, how
    /// Whether arguments such as "-33.9" are numbers, not options.
    bool hasNegativeNumbers = false;
    int (*run)(CommandLine& line);

    /// "log own", or the group alone.
    QString name() const { return verb.isEmpty() ? group : group + u' ' + verb; }
    QString fullName() const { return QStringLiteral("vlbase ") + name(); }
};

/// The text of `vlbase GROUP VERB --help`.
QString helpText(const Command& command);

/// All verbs, in the order in which the help lists them.
const std::vector<Command>& allCommands();

/// Runs the program: finds the verb, deals with --help and --version.
/// \param arguments without the program's name
/// \return the exit status.
int runProgram(const QStringList& arguments);

} // namespace vlbase::tool

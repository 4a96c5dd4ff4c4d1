#pragma once

#include "command.h"

#include <QCommandLineParser>

#include <cstdint>
#include <optional>

namespace vlbase::tool {

/// The options and arguments of one call of a verb.
///
/// The getters that read numbers note the first fault and go on with the fallback, so a verb
/// asks for all its options and then once whether `hasFault()`.
class CommandLine
{
public:
    explicit CommandLine(const Command& command);

    /// \return the exit status when the call ends here: the help was asked for, or the line is
    ///         wrong, which it has told then.
    std::optional<int> parse(const QStringList& arguments);

    const Command& command() const { return m_command; }
    bool isSet(const QString& option) const { return m_parser.isSet(option); }
    QString value(const QString& option) const { return m_parser.value(option); }
    /// All values of a repeated option, those that hold commas taken apart.
    QStringList list(const QString& option) const;
    QStringList positional() const;

    std::int64_t bytes(const QString& option, std::int64_t fallback, std::int64_t least,
                       std::int64_t most);
    std::int64_t count(const QString& option, std::int64_t fallback, std::int64_t least,
                       std::int64_t most);
    /// Seconds with a fraction, from 0.
    double seconds(const QString& option, double fallback);

    /// Notes a fault of the line, told with the verb's name before it.
    void addFault(const QString& text);
    bool hasFault() const { return !m_fault.isEmpty(); }
    /// Tells the first fault and where the help is.
    /// \return WrongUse.
    int tellFault() const;

    /// A line on standard error with the verb's name before it.
    void tell(const QString& text) const;

private:
    QString parserFault() const;

    const Command& m_command;
    QCommandLineParser m_parser;
    QString m_fault;
};

} // namespace vlbase::tool

#include "commandline.h"

#include "bytecount.h"
#include "exitstatus.h"
#include "suggestion.h"
#include "textoutput.h"

namespace vlbase::tool {
namespace {

// A limit beyond it is there for the sake of the arithmetic and says nothing to people.
constexpr std::int64_t mostToldBytes = std::int64_t{1} << 40;

QStringList optionNames(const Command& command)
{
    QStringList names = {QStringLiteral("--help")};
    for (const Option& option : command.options)
        names << QStringLiteral("--") + option.name;
    return names;
}

// The parser takes whatever begins with a hyphen for options. A number that shall not be one
// passes it behind this mark, which no one can type.
constexpr QChar numberMark(0xE000);

bool isNegativeNumber(const QString& argument)
{
    return argument.size() > 1 && argument[0] == u'-' &&
           (argument[1] == u'.' || (argument[1] >= u'0' && argument[1] <= u'9'));
}

QStringList withNumbersMarked(QStringList arguments)
{
    for (QString& argument : arguments) {
        if (isNegativeNumber(argument))
            argument.prepend(numberMark);
    }
    return arguments;
}

} // namespace

CommandLine::CommandLine(const Command& command)
    : m_command(command)
{
    for (const Option& option : command.options) {
        m_parser.addOption(QCommandLineOption(option.name, option.text, option.value));
    }
    m_parser.addOption(
        QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")}));
}

std::optional<int> CommandLine::parse(const QStringList& arguments)
{
    const bool isParsed =
        m_parser.parse(QStringList(m_command.fullName()) +
                       (m_command.hasNegativeNumbers ? withNumbersMarked(arguments) : arguments));
    if (m_parser.isSet(QStringLiteral("help")))
        return print(helpText(m_command)) ? Success : Failure;
    if (isParsed)
        return std::nullopt;
    addFault(parserFault());
    return tellFault();
}

QString CommandLine::parserFault() const
{
    const QStringList unknown = m_parser.unknownOptionNames();
    if (!unknown.isEmpty()) {
        const QString& name = unknown.constFirst();
        const QString dashes = name.size() > 1 ? QStringLiteral("--") : QStringLiteral("-");
        return QStringLiteral("unknown option '%1'.%2 A text that begins with '-' goes after "
                              "'--'.")
            .arg(dashes + name, didYouMean(dashes + name, optionNames(m_command)));
    }
    for (const Option& option : m_command.options) {
        const bool isNamed = m_parser.errorText().contains(u'\'' + option.name + u'\'') ||
                             m_parser.errorText().contains(QStringLiteral("--") + option.name);
        if (isNamed && !option.value.isEmpty())
            return QStringLiteral("--%1 needs a value: --%1 %2").arg(option.name, option.value);
        if (isNamed)
            return QStringLiteral("--%1 takes no value").arg(option.name);
    }
    return m_parser.errorText();
}

QStringList CommandLine::positional() const
{
    QStringList arguments = m_parser.positionalArguments();
    for (QString& argument : arguments) {
        if (argument.startsWith(numberMark))
            argument.remove(0, 1);
    }
    return arguments;
}

QStringList CommandLine::list(const QString& option) const
{
    return m_parser.values(option).join(u',').split(u',', Qt::SkipEmptyParts);
}

std::int64_t CommandLine::bytes(const QString& option, std::int64_t fallback, std::int64_t least,
                                std::int64_t most)
{
    if (!isSet(option))
        return fallback;
    const auto number = parseByteCount(value(option));
    if (!number) {
        addFault(QStringLiteral("--%1: '%2' is no number of bytes; 65536, 64K and 1MiB are")
                     .arg(option, value(option)));
        return fallback;
    }
    if (*number < least || *number > most) {
        QString range =
            QStringLiteral("from %1 to %2").arg(byteCountText(least), byteCountText(most));
        if (most > mostToldBytes)
            range = QStringLiteral("at least %1").arg(byteCountText(least));
        else if (most == least)
            range = byteCountText(least);
        addFault(QStringLiteral("--%1: '%2' is not %3").arg(option, value(option), range));
        return fallback;
    }
    return *number;
}

std::int64_t CommandLine::count(const QString& option, std::int64_t fallback, std::int64_t least,
                                std::int64_t most)
{
    if (!isSet(option))
        return fallback;
    bool isNumber = false;
    const std::int64_t number = value(option).toLongLong(&isNumber);
    if (!isNumber || number < least || number > most) {
        addFault(QStringLiteral("--%1: '%2' is no whole number from %3 to %4")
                     .arg(option, value(option))
                     .arg(least)
                     .arg(most));
        return fallback;
    }
    return number;
}

double CommandLine::seconds(const QString& option, double fallback)
{
    if (!isSet(option))
        return fallback;
    bool isNumber = false;
    const double number = value(option).toDouble(&isNumber);
    if (!isNumber || !(number >= 0 && number <= 1e9)) {
        addFault(QStringLiteral("--%1: '%2' is no number of seconds; 10 and 0.5 are")
                     .arg(option, value(option)));
        return fallback;
    }
    return number;
}

void CommandLine::addFault(const QString& text)
{
    if (m_fault.isEmpty())
        m_fault = text;
}

int CommandLine::tellFault() const
{
    tell(m_fault);
    printError(QStringLiteral("'%1 --help' tells the options.").arg(m_command.fullName()));
    return WrongUse;
}

void CommandLine::tell(const QString& text) const
{
    printError(QStringLiteral("%1: %2").arg(m_command.fullName(), text));
}

} // namespace vlbase::tool

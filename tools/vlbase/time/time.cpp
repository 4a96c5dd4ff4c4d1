#include "stamptext.h"
#include "tools/jsontext.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <VLBase/basetypes/datetime.h>

#include <QJsonObject>

namespace vlbase::tool::time {
namespace {

QString asText(quint64 stamp)
{
    QString text;
    for (const auto& [name, form] : stampTexts(stamp))
        text += QStringLiteral("%1  %2\n").arg(name, -8).arg(form);
    return text;
}

QString asJson(quint64 stamp)
{
    // All of them texts: numbers of JSON lose the digits of large stamps.
    QJsonObject object;
    for (const auto& [name, form] : stampTexts(stamp))
        object[name] = form;
    return jsonText(object);
}

int run(CommandLine& line)
{
    const QString text = line.positional().join(u' ');
    const std::optional<quint64> stamp =
        text.isEmpty() ? Vela::DateTime::QDateTime2TimeStamp(QDateTime::currentDateTimeUtc())
                       : parseStamp(text);
    if (!stamp)
        line.addFault(QStringLiteral("'%1' is neither a time stamp nor a date from 1970 on. Write "
                                     "1700000000123456 or 2023-11-14T22:13:20.123456Z.")
                          .arg(text));
    if (line.hasFault())
        return line.tellFault();
    return print(line.isSet(QStringLiteral("json")) ? asJson(*stamp) : asText(*stamp)) ? Success
                                                                                       : Failure;
}

} // namespace

Command timeCommand()
{
    Command command;
    command.group = QStringLiteral("time");
    command.summary = QStringLiteral("shows a time stamp as text, and a text as time stamp");
    command.usage = QStringLiteral("[OPTION...] [STAMP | TEXT]");
    command.about = QStringLiteral(
        "Shows an instant in all forms of the family: the time stamp (microseconds since 1970 in "
        "UTC), UTC and local time to the microsecond, local time as in log lines, and ISO 8601.\n"
        "Digits alone are a time stamp. A text is any of the forms shown, without the time or "
        "the fraction if you like; it is local time unless it ends with Z or an offset. Without "
        "an argument it is now.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Shows them as a JSON object of texts.")},
    };
    command.examples = {
        {QStringLiteral("what a stamp means"), QStringLiteral("vlbase time 1700000000123456")},
        {QStringLiteral("the stamp of a log line"),
         QStringLiteral("vlbase time 2023-11-14 22:13:20.123.456")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::time

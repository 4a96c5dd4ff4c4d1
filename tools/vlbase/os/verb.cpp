#include "verb.h"

#include "machine.h"
#include "tools/jsontext.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"

#include <VLBase/os/velaos.h>

#include <QJsonObject>

#include <algorithm>

namespace vlbase::tool::os {
namespace {

QString asText(const std::vector<Fact>& facts)
{
    qsizetype width = 0;
    for (const Fact& fact : facts)
        width = std::max(width, fact.title.size());
    QString text;
    for (const Fact& fact : facts) {
        const QStringList lines = fact.texts.join(QString()).isEmpty()
                                      ? QStringList(QStringLiteral("unknown"))
                                      : fact.texts;
        const QString lineEnd = u'\n' + QString(width + 2, u' ');
        text += fact.title.leftJustified(width + 2) + lines.join(lineEnd) + u'\n';
    }
    return text;
}

QString asJson(const std::vector<Fact>& facts)
{
    QJsonObject object;
    for (const Fact& fact : facts)
        object[fact.key] = fact.value;
    return jsonText(object);
}

int run(CommandLine& line)
{
    if (!line.positional().isEmpty())
        line.addFault(
            QStringLiteral("takes no argument, but got '%1'").arg(line.positional().constFirst()));
    if (line.hasFault())
        return line.tellFault();
    const std::vector<Fact> facts = machineFacts(VelaOS::Get());
    return print(line.isSet(QStringLiteral("json")) ? asJson(facts) : asText(facts)) ? Success
                                                                                     : Failure;
}

} // namespace

Command osCommand()
{
    Command command;
    command.group = QStringLiteral("os");
    command.summary = QStringLiteral("shows what the operating-system service sees");
    command.usage = QStringLiteral("[OPTION...]");
    command.about = QStringLiteral(
        "Shows this machine as the applications see it through the operating-system service: "
        "names and identifiers, addresses and network adapters, directories, the time zone's "
        "offset in force now and outside summer time, time stamps and threads. What the service "
        "cannot find out is unknown.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Shows them as a JSON object.")},
    };
    command.examples = {
        {QStringLiteral("what does an application take for the time zone?"),
         QStringLiteral("TZ=Europe/Berlin vlbase os")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::os

#include "bandjson.h"
#include "frequencytext.h"
#include "plan.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <QJsonArray>

namespace vlbase::tool::band {
namespace {

QString asJson()
{
    QJsonArray bands;
    for (unsigned index = 0; index < GSM().GetCount(); ++index)
        bands.append(bandObject(index));
    return jsonText(bands);
}

QString asText()
{
    QString text = QStringLiteral("  # Name          Channels      First          Last\n");
    int index = 0;
    for (const Band& band : planBands()) {
        QString number = QStringLiteral("%1").arg(index++, 3);
        QString name = band.GetName();
        for (const ChannelRange& range : channelRanges(band)) {
            text += QStringLiteral("%1 %2  %3  %4  %5\n")
                        .arg(number)
                        .arg(name, -12)
                        .arg(QStringLiteral("%1 to %2").arg(range.first).arg(range.last), -12)
                        .arg(megahertzText(range.firstHz), -13)
                        .arg(megahertzText(range.lastHz));
            number = QStringLiteral("   ");
            name.clear();
        }
    }
    return text;
}

int run(CommandLine& line)
{
    if (!line.positional().isEmpty())
        line.addFault(QStringLiteral("'%1' is not an option").arg(line.positional().constFirst()));
    if (line.hasFault())
        return line.tellFault();
    return print(line.isSet(QStringLiteral("json")) ? asJson() : asText()) ? Success : Failure;
}

} // namespace

Command listCommand()
{
    Command command;
    command.group = QStringLiteral("band");
    command.verb = QStringLiteral("list");
    command.summary = QStringLiteral("lists the bands of the GSM plan");
    command.usage = QStringLiteral("[OPTION...]");
    command.about = QStringLiteral(
        "Lists the built-in GSM bands, uplinks and downlinks as bands of their own, with their "
        "channels and the frequencies of the first and the last one. Channels are 200 kHz apart.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Lists them as a JSON array.")},
    };
    command.examples = {
        {QStringLiteral("the names, for a program"),
         QStringLiteral("vlbase band list --json | jq -r '.[].name'")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::band

#include "bandargument.h"
#include "bandjson.h"
#include "frequencytext.h"
#include "plan.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

namespace vlbase::tool::band {
namespace {

QString asText(unsigned index, unsigned long channel)
{
    std::vector<Band> bands = planBands();
    QString text;
    for (const unsigned each : {index, pairedWith(index)}) {
        text += QStringLiteral("%1  channel %2  %3\n")
                    .arg(bands[each].GetName(), -12)
                    .arg(channel)
                    .arg(megahertzText(bands[each].GetFrequency(channel)));
    }
    return text;
}

QString asJson(unsigned index, unsigned long channel)
{
    std::vector<Band> bands = planBands();
    return jsonText(QJsonObject{
        {QStringLiteral("band"), bands[index].GetName()},
        {QStringLiteral("channel"), static_cast<qint64>(channel)},
        {QStringLiteral("hertz"), bands[index].GetFrequency(channel)},
        {QStringLiteral("pair"), bands[pairedWith(index)].GetName()},
        {QStringLiteral("pairHertz"), bands[pairedWith(index)].GetFrequency(channel)},
    });
}

int run(CommandLine& line)
{
    QStringList words = line.positional();
    if (words.size() < 2) {
        line.addFault(QStringLiteral("takes a band and a channel: vlbase band channel %1")
                          .arg(line.command().usage));
        return line.tellFault();
    }
    const QString number = words.takeLast();
    bool isNumber = false;
    const unsigned channel = number.toUInt(&isNumber);
    if (!isNumber)
        line.addFault(QStringLiteral("'%1' is no channel").arg(number));
    const std::optional<unsigned> index =
        line.hasFault() ? std::nullopt : bandArgument(line, words.join(u' '));
    if (line.hasFault())
        return line.tellFault();

    const Band band = planBands()[*index];
    if (!band.IsValidChannel(channel)) {
        line.tell(QStringLiteral("%1 has the channels %2, not %3")
                      .arg(band.GetName(), channelsText(band))
                      .arg(channel));
        return Failure;
    }
    const bool wantsJson = line.isSet(QStringLiteral("json"));
    return print(wantsJson ? asJson(*index, channel) : asText(*index, channel)) ? Success : Failure;
}

} // namespace

Command channelCommand()
{
    Command command;
    command.group = QStringLiteral("band");
    command.verb = QStringLiteral("channel");
    command.summary = QStringLiteral("tells the frequency of a channel, and that of its pair");
    command.usage = QStringLiteral("[OPTION...] NAME CHANNEL");
    command.about = QStringLiteral("Tells the frequency of a band's channel, and that of the same "
                                   "channel in the other direction.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Tells it as a JSON object, in hertz.")},
    };
    command.exitStatuses = {{QStringLiteral("1"), QStringLiteral("the band has no such channel")}};
    command.examples = {
        {QStringLiteral("where channel 17 of the 900 MHz range is received"),
         QStringLiteral("vlbase band channel gsm900 down 17")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::band

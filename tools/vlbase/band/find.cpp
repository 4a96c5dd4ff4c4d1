#include "bandjson.h"
#include "frequencytext.h"
#include "plan.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <QJsonArray>

#include <cmath>

namespace vlbase::tool::band {
namespace {

struct Hit
{
    QString name;
    unsigned long channel;
    double channelHz;
    double distanceHz; ///< from the channel up to the frequency
};

std::vector<Hit> hitsAt(double hertz)
{
    std::vector<Hit> hits;
    for (Band& band : planBands()) {
        unsigned long channel = 0;
        if (band.FindFrequency(hertz, channel) == FrequencyOutsideBand)
            continue;
        const double channelHz = band.GetFrequency(channel);
        hits.push_back({band.GetName(), channel, channelHz, hertz - channelHz});
    }
    return hits;
}

QString placeText(const Hit& hit)
{
    if (hit.distanceHz == 0.0)
        return QStringLiteral("on the channel");
    return QStringLiteral("%1 kHz %2 it at %3")
        .arg(QString::number(std::abs(hit.distanceHz) / 1e3),
             hit.distanceHz > 0.0 ? QStringLiteral("above") : QStringLiteral("below"),
             megahertzText(hit.channelHz));
}

QString asText(const std::vector<Hit>& hits)
{
    QString text;
    for (const Hit& hit : hits) {
        text += QStringLiteral("%1  channel %2  %3\n")
                    .arg(hit.name, -12)
                    .arg(hit.channel, -4)
                    .arg(placeText(hit));
    }
    return text;
}

QString asJson(const std::vector<Hit>& hits)
{
    QJsonArray array;
    for (const Hit& hit : hits) {
        array.append(QJsonObject{
            {QStringLiteral("band"), hit.name},
            {QStringLiteral("channel"), static_cast<qint64>(hit.channel)},
            {QStringLiteral("channelHz"), hit.channelHz},
            {QStringLiteral("distanceHz"), hit.distanceHz},
        });
    }
    return jsonText(array);
}

int run(CommandLine& line)
{
    const QString text = line.positional().join(u' ');
    const std::optional<double> hertz = parseFrequency(text);
    if (text.isEmpty())
        line.addFault(QStringLiteral("which frequency?"));
    else if (!hertz)
        line.addFault(QStringLiteral("'%1' is no frequency. Write 935.2 MHz, or hertz without a "
                                     "unit.")
                          .arg(text));
    if (line.hasFault())
        return line.tellFault();

    const std::vector<Hit> hits = hitsAt(*hertz);
    if (line.isSet(QStringLiteral("json")))
        return print(asJson(hits)) && !hits.empty() ? Success : Failure;
    if (hits.empty()) {
        line.tell(QStringLiteral("no band of the plan is at %1").arg(megahertzText(*hertz)));
        return Failure;
    }
    return print(asText(hits)) ? Success : Failure;
}

} // namespace

Command findCommand()
{
    Command command;
    command.group = QStringLiteral("band");
    command.verb = QStringLiteral("find");
    command.summary = QStringLiteral("tells every band and channel at a frequency");
    command.usage = QStringLiteral("[OPTION...] FREQUENCY");
    command.about = QStringLiteral(
        "Tells every band of the plan that a frequency lies in, the channel there and how far the "
        "frequency is from it. The frequency is in hertz, or has a unit of which the first letter "
        "is enough.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Tells them as a JSON array, in hertz.")},
    };
    command.exitStatuses = {{QStringLiteral("1"), QStringLiteral("no band is at that frequency")}};
    command.examples = {
        {QStringLiteral("what is received here"), QStringLiteral("vlbase band find 935.2 MHz")},
        {QStringLiteral("the same"), QStringLiteral("vlbase band find 935200000")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::band

#include "bandargument.h"
#include "bandjson.h"
#include "frequencytext.h"
#include "plan.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <VLBase/utilities/xmlformat.h>

#include <QDomDocument>
#include <QDomElement>

namespace vlbase::tool::band {
namespace {

QString row(const QString& title, const QString& content)
{
    return QStringLiteral("%1  %2\n").arg(title, -11).arg(content);
}

QString asText(unsigned index)
{
    const std::vector<Band> bands = planBands();
    const Band& band = bands[index];
    const std::vector<ChannelRange> ranges = channelRanges(band);
    int channels = 0;
    for (const ChannelRange& range : ranges)
        channels += range.count();

    QString text = row(QStringLiteral("name"), band.GetName());
    text += row(QStringLiteral("direction"), index % 2 == 0
                                                 ? QStringLiteral("uplink, phone to network")
                                                 : QStringLiteral("downlink, network to phone"));
    const Band& pair = bands[pairedWith(index)];
    text += row(QStringLiteral("paired with"),
                QStringLiteral("%1, %2 %3")
                    .arg(pair.GetName(),
                         megahertzText(std::abs(pair.GetStartFreq() - band.GetStartFreq())),
                         index % 2 == 0 ? QStringLiteral("above") : QStringLiteral("below")));
    text += row(QStringLiteral("spacing"), QStringLiteral("%1 kHz").arg(band.GetStepWidth() / 1e3));
    text += row(QStringLiteral("channels"), QString::number(channels));
    for (const ChannelRange& range : ranges) {
        text += row({}, QStringLiteral("%1 to %2 at %3 to %4")
                            .arg(range.first)
                            .arg(range.last)
                            .arg(megahertzText(range.firstHz), megahertzText(range.lastHz)));
    }
    return text;
}

/// A band of the plan is kept by name only, so this is a copy of one's own. The form has no place
/// for a second range of channels.
QString asXml(unsigned index)
{
    const Band band = planBands()[index];
    const ChannelRange range = channelRanges(band).front();
    const Band own(band.GetName(), band.GetStepWidth(), range.firstHz, range.first, range.last,
                   range.first, false);
    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("Band"));
    document.appendChild(root);
    own.Save(document, root);
    return XmlFormat().indented(document.toString(-1));
}

int run(CommandLine& line)
{
    // A name may come as one word or as two.
    const QString name = line.positional().join(u' ');
    if (name.isEmpty())
        line.addFault(QStringLiteral("which band? 'vlbase band list' shows them all."));
    const std::optional<unsigned> index = line.hasFault() ? std::nullopt : bandArgument(line, name);
    if (line.hasFault())
        return line.tellFault();

    QString text = asText(*index);
    if (line.isSet(QStringLiteral("json")))
        text = jsonText(bandObject(*index));
    else if (line.isSet(QStringLiteral("xml")))
        text = asXml(*index);
    return print(text) ? Success : Failure;
}

} // namespace

Command showCommand()
{
    Command command;
    command.group = QStringLiteral("band");
    command.verb = QStringLiteral("show");
    command.summary = QStringLiteral("tells all about one band");
    command.usage = QStringLiteral("[OPTION...] NAME");
    command.about = QStringLiteral("Tells a band's direction, its pair, its spacing and its "
                                   "channels. The name is that of 'vlbase band list' or its "
                                   "number; case and blanks do not matter.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Tells it as a JSON object.")},
        {QStringLiteral("xml"),
         {},
         QStringLiteral("Writes the first range of channels in the XML form of bands, as the "
                        "start of a band of one's own.")},
    };
    command.examples = {
        {QStringLiteral("the band on which base stations of the 900 MHz range send"),
         QStringLiteral("vlbase band show gsm900 down")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::band

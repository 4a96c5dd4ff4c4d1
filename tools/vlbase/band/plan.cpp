#include "plan.h"

namespace vlbase::tool::band {
namespace {

QString folded(const QString& name)
{
    QString text = name.toLower();
    text.remove(u' ');
    return text;
}

} // namespace

QStringList bandNames()
{
    QStringList names;
    for (const Band& band : planBands())
        names << band.GetName();
    return names;
}

std::vector<Band> planBands()
{
    const GSM plan;
    std::vector<Band> bands;
    bands.reserve(plan.GetCount());
    for (unsigned index = 0; index < plan.GetCount(); ++index)
        bands.push_back(plan.GetBand(index));
    return bands;
}

std::optional<unsigned> findBand(const QString& name)
{
    const QStringList names = bandNames();
    for (qsizetype index = 0; index < names.size(); ++index) {
        if (folded(names[index]) == folded(name) || QString::number(index) == name.trimmed())
            return static_cast<unsigned>(index);
    }
    return std::nullopt;
}

unsigned pairedWith(unsigned index)
{
    return index ^ 1U;
}

std::vector<ChannelRange> channelRanges(const Band& band)
{
    Band tuned = band;
    std::vector<ChannelRange> ranges;
    unsigned long channel = band.GetStartChannel();
    for (; channel <= band.GetStopChannel(); ++channel) {
        if (!band.IsValidChannel(channel))
            continue;
        const double hertz = tuned.GetFrequency(channel);
        if (ranges.empty() || ranges.back().last + 1 != channel)
            ranges.push_back({channel, channel, hertz, hertz});
        ranges.back().last = channel;
        ranges.back().lastHz = hertz;
    }
    return ranges;
}

QString channelsText(const Band& band)
{
    QStringList texts;
    for (const ChannelRange& range : channelRanges(band))
        texts << QStringLiteral("%1 to %2").arg(range.first).arg(range.last);
    return texts.join(QStringLiteral(" and "));
}

} // namespace vlbase::tool::band

#pragma once

#include <VLBase/basetypes/gsm.h>

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace vlbase::tool::band {

/// Neighbouring channels, all of them valid, and where the first and the last one lie.
struct ChannelRange
{
    unsigned long first;
    unsigned long last;
    double firstHz;
    double lastHz;

    int count() const { return static_cast<int>(last - first + 1); }
};

/// Index of a band of the plan by its name, in any case of letters and with or without blanks; or
/// by the number that `vlbase band list` shows.
std::optional<unsigned> findBand(const QString& name);

QStringList bandNames();

/// All bands of the plan, in the plan's order.
std::vector<Band> planBands();

/// The index of the band that a band is paired with, uplink and downlink.
unsigned pairedWith(unsigned index);

/// The channels of a band, from low numbers to high ones.
std::vector<ChannelRange> channelRanges(const Band& band);

/// "0 to 124 and 955 to 1023"
QString channelsText(const Band& band);

} // namespace vlbase::tool::band

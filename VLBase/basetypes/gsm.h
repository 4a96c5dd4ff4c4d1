#pragma once

#include <VLBase/basetypes/band.h>
#include <VLBase/vlbase_export.h>

#include <QString>

#include <vector>

/// The built-in plan of the GSM bands, uplink and downlink as bands of their own.
///
///     GSM plan;
///     plan.Channel2Frequency(124, GSM::GSM900Down);   // 959800000.0
///
/// The two 900 MHz bands hold the extended range as a second sub-band: channels 0 to 124 and 955 to
/// 1023. All bands are GSM bands with a step width of 200000 Hz, and carry the system flag.
class VLBASE_EXPORT GSM
{
public:
    /// The bands in the order of their indexes. Odd ones are downlinks.
    enum EGSMBand : int {
        GSM900Up = 0,
        GSM900Down = 1,
        GSM1800Up = 2,
        GSM1800Down = 3,
        GSM1900Up = 4,
        GSM1900Down = 5,
        GSM450Up = 6,
        GSM450Down = 7,
        GSM480Up = 8,
        GSM480Down = 9,
        GSM850Up = 10,
        GSM850Down = 11,
    };

    GSM();

    /// How many bands there are: 12.
    unsigned int GetCount() const;

    /// A copy of a band; of the first one when there is none of that index.
    Band GetBand(unsigned int index) const;

    /// Copies the channel arithmetic of a band. False for an index of 12 or more, with `out`
    /// untouched.
    bool GetDefinition(unsigned int index, BandGSM& out) const;

    /// Tells the name, hertz and channels of a band. False for an index of 12 or more, with the
    /// outputs untouched.
    bool GetDefinition(unsigned int index, QString& name, double& stepWidth, double& startFreq,
                       unsigned long& startChannel, unsigned long& stopChannel) const;

    /// Frequency of a band's channel as `Band::GetFrequency` gives it, the cursor of the plan's own
    /// band included; -1.0 when there is no such band.
    double Channel2Frequency(unsigned long channel, EGSMBand band);

    /// The downlink band that carries the broadcast channel of a band; `GSM900Down` for a number
    /// that is no band.
    static int GetBcchBandForBand(int band);

    /// Hides a band, whatever the second argument.
    void setVisible(unsigned int index, bool visible);

private:
    std::vector<Band> m_bands;
};

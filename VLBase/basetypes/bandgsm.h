#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>
#include <QtGlobal>

#include <vector>

// Frequency bands that a receiver steps through. A simple band is a raster of fixed spacing; a
// GSM band numbers its channels, the frequency of channel n being
//
//     start frequency + (n - calculation factor) * step width
//
// and may consist of several sub-bands with channel ranges of their own. Frequencies are hertz.
//
// Channels are 32 bits wide on every platform: a number that does not fit an `unsigned long` of 32
// bits is taken modulo 2^32, as a Windows caller passes it. Differences of channels are signed
// 32-bit numbers. Nothing here throws, and every operation ends for every value of every field: a
// number that fits no channel becomes the nearest value that does, not-a-number becomes channel 0.

/// The two flavours of a band.
enum BandType {
    BandTypeSimple = 0, ///< a raster of fixed spacing
    BandTypeGSM = 1,    ///< numbered channels
};

class SubBandGSM;

/// A band of numbered channels: the arithmetic between channels and frequencies.
///
/// Stepping and `GetFrequency` move a cursor, the channel value.
class VLBASE_EXPORT BandGSM
{
public:
    /// A band named "not defined": all numbers 0, no sub-band.
    BandGSM();

    /// A band that holds itself as its first sub-band.
    /// \param channelCalculationFactor the channel that lies at `startFreq`
    BandGSM(QString name, double stepWidth, double startFreq, unsigned long startChannel,
            unsigned long stopChannel, unsigned long channelCalculationFactor);

    BandGSM(const BandGSM& other);
    BandGSM& operator=(const BandGSM& other);
    virtual ~BandGSM();

    /// Whether all fields but the type are equal, the cursor and the sub-bands included. A
    /// frequency that is not a number equals nothing.
    bool operator==(const BandGSM& other) const;
    bool operator!=(const BandGSM& other) const { return !(*this == other); }

    QString GetName() const { return m_name; }
    BandType GetType() const { return m_type; }
    bool GetGSM() const { return true; }

    double GetStepWidth() const { return m_stepWidth; }
    void SetStepWidth(double stepWidth) { m_stepWidth = stepWidth; }

    /// Offset of a simple band's raster.
    double GetOffset() const { return m_offset; }
    void SetOffset(double offset) { m_offset = offset; }

    /// Frequency of the channel that equals the calculation factor.
    double GetStartFreq() const { return m_startFreq; }
    void SetStartFreq(double startFreq) { m_startFreq = startFreq; }

    unsigned long GetStartChannel() const { return m_startChannel; }
    void SetStartChannel(unsigned long channel) { m_startChannel = static_cast<quint32>(channel); }

    unsigned long GetStopChannel() const { return m_stopChannel; }
    void SetStopChannel(unsigned long channel) { m_stopChannel = static_cast<quint32>(channel); }

    unsigned long GetChannelCalculationFactor() const { return m_factor; }
    void SetChannelCalculationFactor(unsigned long channel)
    {
        m_factor = static_cast<quint32>(channel);
    }

    /// The cursor: the channel that `GetFrequency` was last asked for, or stepping came to.
    unsigned long GetChannelValue() const { return m_channelValue; }

    /// Appends a range of channels. The band then starts at the lowest start channel and ends at
    /// the highest stop channel of all its sub-bands, and its start frequency becomes their lowest
    /// one, if that is above 0. Its calculation factor stays.
    void AddSubBand(double stepWidth, double startFreq, unsigned long startChannel,
                    unsigned long stopChannel, unsigned long channelCalculationFactor);

    /// Frequency of a channel, which becomes the cursor; 0.0 when the band does not start above 0
    /// Hz, has no sub-band at all, or several of which none has the channel.
    ///
    /// A channel below the first one leaves the cursor alone and gives the cursor's frequency. A
    /// channel above the last one of a band in one piece is computed like any other. A step width
    /// of 0 becomes 10000 Hz. Where sub-bands overlap the last one counts.
    double GetFrequency(unsigned long channel);

    /// The channel nearest to a frequency, halves rounded up; also beyond the band's ends. In a
    /// band of several sub-bands the channel at or below it, and 0 when no sub-band holds the
    /// frequency.
    unsigned long GetChannelForFrequency(double frequency) const;

    /// Whether the band, or one of its several sub-bands, has the channel.
    bool IsValidChannel(unsigned long channel) const;

    /// The valid channel that replaces `channel`: itself when it is valid, and the start or stop
    /// channel when it lies outside of them. In a gap between sub-bands it is the next valid one in
    /// the direction given, or with neither the nearer edge of the gap (a tie goes up).
    ///
    /// A search that reaches the end of the numbers goes on at their other end; without any valid
    /// channel `channel` is returned.
    unsigned long GetNextValidChannel(unsigned long channel, bool up, bool down) const;

    /// Start and stop channel. Always true.
    bool GetChannelRange(int& first, int& last) const;

    /// The channels between two frequencies; start and stop channel where the limits lie outside
    /// the band, and for a simple band. Always true.
    bool GetChannelRangeWithinFreqRange(int& first, int& last, double low, double high) const;

    /// Whether the band, or one of its several sub-bands, reaches into a closed range of
    /// frequencies. The limits may come in either order. A simple band always does, a GSM band
    /// without a sub-band never.
    bool HasChannelsWithinFreqRange(double low, double high) const;

protected:
    /// Replaces a step width of 0 by 10000 Hz.
    void ensureStepWidth();

    QString m_name;
    double m_stepWidth = 0.0;
    double m_offset = 0.0;
    BandType m_type = BandTypeGSM;
    double m_startFreq = 0.0;
    quint32 m_startChannel = 0;
    quint32 m_stopChannel = 0;
    quint32 m_factor = 0;
    quint32 m_channelValue = 0;
    std::vector<SubBandGSM> m_subBands;

private:
    quint32 nextValid(quint32 channel, bool up) const;
    quint32 nearestEdge(quint32 channel) const;
    void takeOverSubBandLimits();
};

/// A range of channels of a `BandGSM`, with an empty name.
class VLBASE_EXPORT SubBandGSM : public BandGSM
{
public:
    SubBandGSM(double stepWidth, double startFreq, unsigned long startChannel,
               unsigned long stopChannel, unsigned long channelCalculationFactor);
};

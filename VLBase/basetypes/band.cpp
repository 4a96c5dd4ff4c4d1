#include "band.h"

#include <VLBase/basetypes/internal/channelmath.h>

#include <algorithm>
#include <cmath>
#include <utility>

Band::Band()
    : Band(QLatin1String(""), vlbase::defaultSpacing, 0.0, true)
{
}

Band::Band(QString name, double spacing, double offset, bool useRaster)
    : BandGSM(std::move(name), spacing, 0.0, 0, 0, 0)
    , m_useRaster(useRaster)
{
    m_offset = offset;
    m_type = BandTypeSimple;
}

Band::Band(QString name, double stepWidth, double startFreq, unsigned long startChannel,
           unsigned long stopChannel, unsigned long channelCalculationFactor, bool system)
    : BandGSM(std::move(name), stepWidth, startFreq, startChannel, stopChannel,
              channelCalculationFactor)
    , m_system(system)
{
}

Band::Band(const Band& other)
    // NOLINTNEXTLINE(readability-redundant-member-init): gcc asks for it.
    : QObject()
    , BandGSM(other)
    , m_useRaster(other.m_useRaster)
    , m_system(other.m_system)
    , m_visible(other.m_visible)
{
}

Band& Band::operator=(const Band& other)
{
    BandGSM::operator=(other);
    m_useRaster = other.m_useRaster;
    m_system = other.m_system;
    m_visible = other.m_visible;
    return *this;
}

Band::~Band() = default;

bool Band::operator==(const Band& other) const
{
    return BandGSM::operator==(other) && m_type == other.m_type &&
           m_useRaster == other.m_useRaster && m_system == other.m_system &&
           m_visible == other.m_visible;
}

void Band::setVisible(bool)
{
    m_visible = false;
}

double Band::GetFrequency(unsigned long channel, double frequency)
{
    ensureStepWidth();
    if (GetGSM())
        return BandGSM::GetFrequency(channel);
    return m_useRaster ? snapToRaster(frequency) : frequency;
}

double Band::snapToRaster(double frequency) const
{
    const double steps = (frequency - m_offset) / m_stepWidth;
    const bool wholeHertz = std::abs(m_stepWidth - std::floor(m_stepWidth)) < 0.001;
    if (wholeHertz)
        return std::floor(std::floor(steps) * m_stepWidth) + m_offset;
    return std::floor(steps + 0.5) * m_stepWidth + m_offset;
}

FrequencyFound Band::FindFrequency(double frequency, unsigned long& channel)
{
    ensureStepWidth();
    if (GetGSM()) {
        if (!HasChannelsWithinFreqRange(frequency, frequency))
            return FrequencyOutsideBand;
        m_channelValue = static_cast<quint32>(GetChannelForFrequency(frequency));
        channel = m_channelValue;
        const double distance = std::abs(BandGSM::GetFrequency(m_channelValue) - frequency);
        return distance < 1e-15 ? FrequencyOnChannel : FrequencyBetweenChannels;
    }
    if (!m_useRaster)
        return FrequencyWithoutRaster;
    const double rest = std::fmod(frequency - m_offset, m_stepWidth);
    const bool onRaster = rest < 1e-5 || std::abs(m_stepWidth - rest) < 1e-5;
    return onRaster ? FrequencyOnChannel : FrequencyBetweenChannels;
}

double Band::GetNextFrequency(bool up, bool& canGoUp, bool& canGoDown, double current,
                              double lowLimit, double highLimit)
{
    if (GetGSM())
        return stepCursor(up, canGoUp, canGoDown, lowLimit, highLimit);
    const double next = up ? current + m_stepWidth : current - m_stepWidth;
    canGoUp = highLimit >= next + m_stepWidth;
    canGoDown = next - m_stepWidth >= lowLimit;
    return GetFrequency(0, next);
}

double Band::stepCursor(bool up, bool& canGoUp, bool& canGoDown, double lowLimit, double highLimit)
{
    // In 64 bits, so that neither end of the numbers wraps to the other.
    const qint64 stepped = qint64{m_channelValue} + (up ? 1 : -1);
    const qint64 kept = std::min(std::max(stepped, qint64{m_startChannel}), qint64{m_stopChannel});
    m_channelValue = static_cast<quint32>(GetNextValidChannel(static_cast<quint32>(kept), up, !up));

    int first = -1;
    int last = -1;
    GetChannelRangeWithinFreqRange(first, last, lowLimit, highLimit);
    canGoUp = m_channelValue < static_cast<quint32>(last);
    canGoDown = m_channelValue > static_cast<quint32>(first);
    return GetFrequency(m_channelValue, 0.0);
}

#include "bandgsm.h"

#include <VLBase/basetypes/internal/channelmath.h>

#include <algorithm>
#include <cmath>
#include <utility>

using vlbase::channelDistance;
using vlbase::nearestChannel;
using vlbase::overlaps;
using vlbase::toChannel;

BandGSM::BandGSM()
    : m_name(QStringLiteral("not defined"))
{
}

BandGSM::BandGSM(QString name, double stepWidth, double startFreq, unsigned long startChannel,
                 unsigned long stopChannel, unsigned long channelCalculationFactor)
    : m_name(std::move(name))
    , m_stepWidth(stepWidth)
    , m_startFreq(startFreq)
    , m_startChannel(static_cast<quint32>(startChannel))
    , m_stopChannel(static_cast<quint32>(stopChannel))
    , m_factor(static_cast<quint32>(channelCalculationFactor))
{
    AddSubBand(stepWidth, startFreq, startChannel, stopChannel, channelCalculationFactor);
}

BandGSM::BandGSM(const BandGSM& other) = default;
BandGSM& BandGSM::operator=(const BandGSM& other) = default;
BandGSM::~BandGSM() = default;

SubBandGSM::SubBandGSM(double stepWidth, double startFreq, unsigned long startChannel,
                       unsigned long stopChannel, unsigned long channelCalculationFactor)
{
    m_name = QLatin1String("");
    m_stepWidth = stepWidth;
    m_startFreq = startFreq;
    SetStartChannel(startChannel);
    SetStopChannel(stopChannel);
    SetChannelCalculationFactor(channelCalculationFactor);
}

bool BandGSM::operator==(const BandGSM& other) const
{
    return m_name == other.m_name && m_stepWidth == other.m_stepWidth &&
           m_offset == other.m_offset && m_startFreq == other.m_startFreq &&
           m_startChannel == other.m_startChannel && m_stopChannel == other.m_stopChannel &&
           m_factor == other.m_factor && m_channelValue == other.m_channelValue &&
           m_subBands == other.m_subBands;
}

void BandGSM::AddSubBand(double stepWidth, double startFreq, unsigned long startChannel,
                         unsigned long stopChannel, unsigned long channelCalculationFactor)
{
    m_subBands.emplace_back(stepWidth, startFreq, startChannel, stopChannel,
                            channelCalculationFactor);
    takeOverSubBandLimits();
}

void BandGSM::takeOverSubBandLimits()
{
    double startFreq = 0.0;
    quint32 startChannel = m_subBands.front().m_startChannel;
    quint32 stopChannel = m_subBands.front().m_stopChannel;
    for (const SubBandGSM& sub : m_subBands) {
        // 0 stands for "none yet", also where a sub-band brought it.
        if (startFreq == 0.0 || sub.m_startFreq < startFreq)
            startFreq = sub.m_startFreq;
        startChannel = std::min(startChannel, sub.m_startChannel);
        stopChannel = std::max(stopChannel, sub.m_stopChannel);
    }
    if (startFreq > 0.0)
        m_startFreq = startFreq;
    m_startChannel = startChannel;
    m_stopChannel = stopChannel;
}

void BandGSM::ensureStepWidth()
{
    if (m_stepWidth == 0.0)
        m_stepWidth = vlbase::defaultSpacing;
}

double BandGSM::GetFrequency(unsigned long channel)
{
    ensureStepWidth();
    const auto wanted = static_cast<quint32>(channel);
    const BandGSM* range = m_subBands.size() == 1 ? this : nullptr;
    if (range == nullptr) {
        for (const SubBandGSM& sub : m_subBands) {
            if (sub.m_startChannel <= wanted && wanted <= sub.m_stopChannel)
                range = &sub;
        }
    }
    if (range == nullptr || !(range->m_startFreq > 0.0))
        return 0.0;
    if (wanted >= range->m_startChannel)
        m_channelValue = wanted;
    return channelDistance(m_channelValue, range->m_factor) * m_stepWidth + range->m_startFreq;
}

unsigned long BandGSM::GetChannelForFrequency(double frequency) const
{
    if (m_subBands.size() <= 1)
        return nearestChannel((frequency - m_startFreq) / m_stepWidth + m_factor);

    quint32 channel = 0;
    for (const SubBandGSM& sub : m_subBands) {
        // The lower end is counted in the band's steps, the upper one in the sub-band's own.
        const double first =
            channelDistance(sub.m_startChannel, sub.m_factor) * m_stepWidth + sub.m_startFreq;
        const double last =
            channelDistance(sub.m_stopChannel, sub.m_factor) * sub.m_stepWidth + sub.m_startFreq;
        if (frequency >= first && last >= frequency) {
            channel = toChannel((frequency - sub.m_startFreq) / sub.m_stepWidth + sub.m_factor);
        }
    }
    return channel;
}

bool BandGSM::IsValidChannel(unsigned long channel) const
{
    const auto wanted = static_cast<quint32>(channel);
    if (m_subBands.size() <= 1)
        return m_startChannel <= wanted && wanted <= m_stopChannel;
    return std::any_of(m_subBands.begin(), m_subBands.end(), [wanted](const SubBandGSM& sub) {
        return sub.m_startChannel <= wanted && wanted <= sub.m_stopChannel;
    });
}

unsigned long BandGSM::GetNextValidChannel(unsigned long channel, bool up, bool down) const
{
    const auto wanted = static_cast<quint32>(channel);
    if (IsValidChannel(wanted))
        return wanted;
    if (wanted < m_startChannel)
        return m_startChannel;
    if (wanted > m_stopChannel)
        return m_stopChannel;
    if (!up && !down)
        return nearestEdge(wanted);
    return nextValid(wanted, up);
}

quint32 BandGSM::nextValid(quint32 channel, bool up) const
{
    // Counting up by one until a channel is valid meets the sub-band whose start is the fewest
    // steps away, where a step beyond the last number leads to 0. Downwards likewise, with stops.
    quint32 fewestSteps = 0;
    quint32 found = channel;
    for (const SubBandGSM& sub : m_subBands) {
        if (sub.m_startChannel > sub.m_stopChannel)
            continue;
        const quint32 edge = up ? sub.m_startChannel : sub.m_stopChannel;
        const quint32 steps = up ? edge - channel : channel - edge;
        if (fewestSteps == 0 || steps < fewestSteps) {
            fewestSteps = steps;
            found = edge;
        }
    }
    return found;
}

quint32 BandGSM::nearestEdge(quint32 channel) const
{
    quint32 found = 0;
    for (std::size_t i = 1; i < m_subBands.size(); ++i) {
        const quint32 below = m_subBands[i - 1].m_stopChannel;
        const quint32 above = m_subBands[i].m_startChannel;
        const qint64 toBelow = std::abs(qint64{channel} - qint64{below});
        const qint64 toAbove = std::abs(qint64{channel} - qint64{above});
        found = toBelow < toAbove ? below : above;
    }
    return found;
}

bool BandGSM::GetChannelRange(int& first, int& last) const
{
    first = static_cast<int>(m_startChannel);
    last = static_cast<int>(m_stopChannel);
    return true;
}

bool BandGSM::GetChannelRangeWithinFreqRange(int& first, int& last, double low, double high) const
{
    GetChannelRange(first, last);
    if (m_type == BandTypeSimple)
        return true;
    const double top = channelDistance(m_stopChannel, m_factor) * m_stepWidth + m_startFreq;
    const auto channelAt = [this](double steps) {
        return static_cast<int>(toChannel(steps + m_startChannel));
    };
    if (low > m_startFreq && top > low)
        first = channelAt(std::ceil((low - m_startFreq) / m_stepWidth));
    if (top > high && high > m_startFreq)
        last = channelAt(std::floor((high - m_startFreq) / m_stepWidth));
    return true;
}

bool BandGSM::HasChannelsWithinFreqRange(double low, double high) const
{
    if (m_type == BandTypeSimple)
        return true;
    if (m_subBands.size() == 1) {
        const double top = channelDistance(m_stopChannel, m_factor) * m_stepWidth + m_startFreq;
        return overlaps(m_startFreq, top, low, high);
    }
    return std::any_of(m_subBands.begin(), m_subBands.end(), [&](const SubBandGSM& sub) {
        const double first =
            channelDistance(sub.m_startChannel, sub.m_factor) * m_stepWidth + sub.m_startFreq;
        const double last =
            channelDistance(sub.m_stopChannel, sub.m_factor) * m_stepWidth + sub.m_startFreq;
        return overlaps(first, last, low, high);
    });
}

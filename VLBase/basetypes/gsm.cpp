#include "gsm.h"

#include <array>
#include <cstddef>

namespace {

struct Entry
{
    const char16_t* name;
    double startFreq;
    unsigned startChannel;
    unsigned stopChannel;
};

constexpr double stepWidth = 200'000.0;

// Primary channels, numbered as in 3GPP TS 45.005, section 2. The first channel of each band lies
// at its start frequency.
constexpr std::array<Entry, 12> entries{{
    {u"GSM900 Up", 890'000'000.0, 0, 124},
    {u"GSM900 Down", 935'000'000.0, 0, 124},
    {u"GSM1800 Up", 1'710'200'000.0, 512, 885},
    {u"GSM1800 Down", 1'805'200'000.0, 512, 885},
    {u"GSM1900 Up", 1'850'200'000.0, 512, 810},
    {u"GSM1900 Down", 1'930'200'000.0, 512, 810},
    {u"GSM450 Up", 450'600'000.0, 259, 293},
    {u"GSM450 Down", 460'600'000.0, 259, 293},
    {u"GSM480 Up", 479'000'000.0, 306, 340},
    {u"GSM480 Down", 489'000'000.0, 306, 340},
    {u"GSM850 Up", 824'200'000.0, 128, 251},
    {u"GSM850 Down", 869'200'000.0, 128, 251},
}};

} // namespace

GSM::GSM()
{
    m_bands.reserve(entries.size());
    for (const Entry& entry : entries) {
        m_bands.emplace_back(QString::fromUtf16(entry.name), stepWidth, entry.startFreq,
                             entry.startChannel, entry.stopChannel, entry.startChannel, true);
    }
    // The extended range counts down from 1024, below the primary channels.
    constexpr std::size_t extended[] = {GSM900Up, GSM900Down};
    for (const std::size_t index : extended)
        m_bands[index].AddSubBand(stepWidth, entries[index].startFreq, 955, 1023, 1024);
}

unsigned int GSM::GetCount() const
{
    return static_cast<unsigned int>(entries.size());
}

Band GSM::GetBand(unsigned int index) const
{
    // A plan that was moved from has no bands.
    if (m_bands.empty())
        return Band();
    return index < m_bands.size() ? m_bands[index] : m_bands.front();
}

bool GSM::GetDefinition(unsigned int index, BandGSM& out) const
{
    if (index >= m_bands.size())
        return false;
    out = m_bands[index];
    return true;
}

bool GSM::GetDefinition(unsigned int index, QString& name, double& step, double& startFreq,
                        unsigned long& startChannel, unsigned long& stopChannel) const
{
    if (index >= m_bands.size())
        return false;
    const Band& band = m_bands[index];
    name = band.GetName();
    step = band.GetStepWidth();
    startFreq = band.GetStartFreq();
    startChannel = band.GetStartChannel();
    stopChannel = band.GetStopChannel();
    return true;
}

double GSM::Channel2Frequency(unsigned long channel, EGSMBand band)
{
    const auto index = static_cast<unsigned int>(band);
    return index < m_bands.size() ? m_bands[index].GetFrequency(channel, 0.0) : -1.0;
}

int GSM::GetBcchBandForBand(int band)
{
    // The downlink stands behind its uplink. The 900 MHz pair is also the answer to what is no
    // band.
    return band > GSM900Up && band <= GSM850Down ? band | 1 : GSM900Down;
}

void GSM::setVisible(unsigned int index, bool visible)
{
    if (index < m_bands.size())
        m_bands[index].setVisible(visible);
}

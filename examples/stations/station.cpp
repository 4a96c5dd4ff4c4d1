#include "station.h"

#include <VLBase/basetypes/gsm.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/errorhandling/vlexception.h>

#include <utility>

namespace {

QString megahertz(double frequencyHz)
{
    return QStringLiteral("%1 MHz").arg(frequencyHz / 1e6, 0, 'f', 1);
}

/// A synthesizer that does not lock on every ninth channel.
void tune(double frequencyHz, unsigned step)
{
    if (step % 9 == 4)
        throw VLException(QStringLiteral("synthesizer does not lock at ") + megahertz(frequencyHz),
                          QStringLiteral("stations/station"), QStringLiteral("Receiver"),
                          QStringLiteral("tune"), __LINE__, 0);
}

} // namespace

Station::Station(QString name)
    : m_name(std::move(name))
    , m_band(GSM().GetBand(GSM::GSM900Down))
{
}

void Station::measureNextChannel()
{
    const double frequencyHz = nextFrequency();
    try {
        measure(frequencyHz);
    } catch (const VLException& failure) {
        ErrorHandler::Interface()->ProtocolException(failure);
    }
    ++m_step;
}

double Station::nextFrequency()
{
    const double currentHz = m_band.GetFrequency(m_band.GetChannelValue());
    if (m_band.GetChannelValue() == m_band.GetStopChannel()) {
        m_band.GetFrequency(m_band.GetStartChannel()); // Once more from the first channel.
    } else {
        bool canGoUp = false;
        bool canGoDown = false;
        m_band.GetNextFrequency(true, canGoUp, canGoDown, currentHz, 0.0, 10e9);
    }
    return currentHz;
}

void Station::measure(double frequencyHz)
{
    tune(frequencyHz, m_step);
    const int levelDbm = -110 + static_cast<int>(m_step * 37 % 60);
    if (m_step % 13 == 7)
        _Q_require(L"stations/station", __LINE__); // An antenna was asked for that is not there.
    if (levelDbm > -60)
        ErrorHandler::Interface()->ProtocolMessage(QStringLiteral("strong carrier, %1 dBm at %2")
                                                       .arg(levelDbm)
                                                       .arg(megahertz(frequencyHz)),
                                                   QStringLiteral("stations/station"),
                                                   QStringLiteral("Station"),
                                                   QStringLiteral("measure"), __LINE__, 2);
    if (ErrorHandler::Instance().GetMessageMask() & 32)
        _Q_Trace(QStringLiteral("%1: %2 dBm at %3")
                     .arg(m_name)
                     .arg(levelDbm)
                     .arg(megahertz(frequencyHz)),
                 QStringLiteral("stations/station"), __LINE__);
}

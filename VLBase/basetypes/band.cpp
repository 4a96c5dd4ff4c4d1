#include "band.h"

#include <VLBase/basetypes/internal/channelmath.h>
#include <VLBase/basetypes/internal/xmltext.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>

#include <QDomDocument>
#include <QDomElement>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr unsigned traceMask = 0x20;

// What is known of this place in the logs of the family.
constexpr unsigned short traceLine = 321;

void trace(const QString& text, unsigned short line)
{
    if (ErrorHandler::Instance().GetMessageMask() & traceMask)
        _Q_Trace(text, QStringLiteral("basetypes/band"), line);
}

} // namespace

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

void Band::Save(QDomDocument& doc, QDomElement& parent) const
{
    if (!vlbase::basetypes::comesBack(m_name)) {
        trace(QStringLiteral("a band's name cannot be written as XML."), __LINE__);
        return;
    }
    const auto append = [&](const char* tag, const QString& text) {
        vlbase::basetypes::appendText(doc, parent, QLatin1String(tag), text);
    };
    append("Name", m_name);
    if (m_system)
        return;
    append("Channelspacing", QStringLiteral("%1").arg(m_stepWidth, 0, 'g', 20, QLatin1Char(' ')));
    if (GetGSM()) {
        append("Type", QStringLiteral("GSM"));
        append("StartChannel", QString::number(m_startChannel));
        append("StopChannel", QString::number(m_stopChannel));
        append("StartFrequency", QStringLiteral("%1").arg(m_startFreq, 0, 'f', -1));
    } else {
        append("Type", QStringLiteral("Simple"));
        append("Offset", QStringLiteral("%1").arg(m_offset, 0, 'g', -1));
        append("UseRaster", m_useRaster ? QStringLiteral("1") : QStringLiteral("0"));
    }
}

void Band::Read(QDomDocument&, QDomElement& element)
{
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement child = node.toElement();
        if (child.isNull()) {
            trace(QStringLiteral("error loading job."), traceLine);
            return;
        }
        readField(child.tagName(), vlbase::basetypes::textOf(child));
    }
}

void Band::readField(const QString& tag, const QString& text)
{
    if (tag == QLatin1String("Name")) {
        m_name = text;
    } else if (tag == QLatin1String("Channelspacing")) {
        m_stepWidth = text.toDouble();
        ensureStepWidth();
    } else if (tag == QLatin1String("Type")) {
        m_type = text == QLatin1String("Simple") ? BandTypeSimple : BandTypeGSM;
    } else if (tag == QLatin1String("StartChannel")) {
        m_startChannel = text.toUInt();
        m_factor = m_startChannel;
    } else if (tag == QLatin1String("StopChannel")) {
        m_stopChannel = text.toUInt();
    } else if (tag == QLatin1String("StartFrequency")) {
        m_startFreq = text.toDouble();
    } else if (tag == QLatin1String("Offset")) {
        m_offset = text.toDouble();
    } else if (tag == QLatin1String("UseRaster")) {
        m_useRaster = text == QLatin1String("1");
    }
}

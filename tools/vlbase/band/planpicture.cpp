#include "planpicture.h"

#include "frequencytext.h"
#include "plan.h"

#include <QXmlStreamWriter>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace vlbase::tool::band {
namespace {

constexpr double width = 1280;
constexpr double left = 176;
constexpr double right = width - 30;
constexpr double overviewTop = 96;
constexpr double laneHeight = 20;
constexpr double panelsTop = 210;
constexpr double panelPitch = 118;
constexpr double barHeight = 40;

constexpr std::array<const char*, 2> directionNames{"Uplink, phone to network",
                                                    "Downlink, network to phone"};
constexpr std::array<const char*, 2> colours{"#2f6fb5", "#d9822b"};
constexpr std::array<const char*, 2> paleColours{"#8fb7e0", "#f0bd86"};

QString number(double value)
{
    return QString::number(value, 'f', 2);
}

/// Maps megahertz to the horizontal position in the picture.
struct Axis
{
    double lowMHz;
    double highMHz;

    double at(double mhz) const
    {
        return left + (mhz - lowMHz) / (highMHz - lowMHz) * (right - left);
    }
    double perMHz() const { return (right - left) / (highMHz - lowMHz); }
};

/// A step of 1, 2 or 5 times a power of ten that leaves at least `pixels` between two marks.
double roundStep(double pixelsPerUnit, double pixels)
{
    const double least = pixels / pixelsPerUnit;
    const double decade = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * decade >= least)
            return factor * decade;
    }
    return 10.0 * decade;
}

class Picture
{
public:
    QString drawn();

private:
    void text(double x, double y, const char* style, const QString& content);
    void bar(double x, double y, double w, double h, const char* colour, const QString& tip = {});
    void line(double x1, double y1, double x2, double y2, const char* colour);

    void heading();
    void overview();
    void panel(unsigned uplink, double top, const Axis& whole);
    void frequencies(const Axis& axis, double y);
    void channels(const Band& band, bool down, const Axis& axis, double y);
    void channelNumbers(const ChannelRange& range, const Axis& axis, double y);

    QString m_text;
    QXmlStreamWriter m_out{&m_text};
    const std::vector<Band> m_bands = planBands();
};

void Picture::text(double x, double y, const char* style, const QString& content)
{
    m_out.writeStartElement(QStringLiteral("text"));
    m_out.writeAttribute(QStringLiteral("x"), number(x));
    m_out.writeAttribute(QStringLiteral("y"), number(y));
    m_out.writeAttribute(QStringLiteral("class"), QLatin1String(style));
    m_out.writeCharacters(content);
    m_out.writeEndElement();
}

void Picture::bar(double x, double y, double w, double h, const char* colour, const QString& tip)
{
    m_out.writeStartElement(QStringLiteral("rect"));
    m_out.writeAttribute(QStringLiteral("x"), number(x));
    m_out.writeAttribute(QStringLiteral("y"), number(y));
    m_out.writeAttribute(QStringLiteral("width"), number(w));
    m_out.writeAttribute(QStringLiteral("height"), number(h));
    m_out.writeAttribute(QStringLiteral("fill"), QLatin1String(colour));
    if (!tip.isEmpty())
        m_out.writeTextElement(QStringLiteral("title"), tip);
    m_out.writeEndElement();
}

void Picture::line(double x1, double y1, double x2, double y2, const char* colour)
{
    m_out.writeEmptyElement(QStringLiteral("line"));
    m_out.writeAttribute(QStringLiteral("x1"), number(x1));
    m_out.writeAttribute(QStringLiteral("y1"), number(y1));
    m_out.writeAttribute(QStringLiteral("x2"), number(x2));
    m_out.writeAttribute(QStringLiteral("y2"), number(y2));
    m_out.writeAttribute(QStringLiteral("stroke"), QLatin1String(colour));
}

QString Picture::drawn()
{
    const std::size_t panels = m_bands.size() / 2;
    const double height = panelsTop + panelPitch * static_cast<double>(panels) - 20;
    m_out.setAutoFormatting(true);
    m_out.setAutoFormattingIndent(1);
    m_out.writeStartDocument();
    m_out.writeStartElement(QStringLiteral("svg"));
    m_out.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
    m_out.writeAttribute(QStringLiteral("viewBox"),
                         QStringLiteral("0 0 %1 %2").arg(width).arg(height));
    m_out.writeAttribute(QStringLiteral("width"), QString::number(width));
    m_out.writeAttribute(QStringLiteral("height"), QString::number(height));
    m_out.writeTextElement(
        QStringLiteral("style"),
        QStringLiteral(
            "text{font-family:Helvetica,Arial,'DejaVu Sans',sans-serif;fill:#222}"
            ".title{font-size:24px;font-weight:bold}.name{font-size:18px;font-weight:bold}"
            ".note{font-size:12px;fill:#555}.key{font-size:14px}"
            ".mark{font-size:11px;fill:#555;text-anchor:middle}"
            ".channel{font-size:11px;text-anchor:middle}"
            ".ending{font-size:11px;text-anchor:end}"));
    bar(0, 0, width, height, "#ffffff");
    heading();
    overview();
    m_out.writeEndDocument();
    return m_text;
}

void Picture::heading()
{
    text(30, 44, "title", QStringLiteral("GSM bands and their channels"));
    double x = 640;
    for (std::size_t direction : {0U, 1U}) {
        bar(x, 31, 16, 16, colours[direction]);
        text(x + 24, 44, "key", QLatin1String(directionNames[direction]));
        x += 240;
    }
    bar(x, 31, 8, 16, paleColours[0]);
    bar(x + 8, 31, 8, 16, paleColours[1]);
    text(x + 24, 44, "key", QStringLiteral("Extended"));
}

/// All bands where they lie, each pair tied to its panel.
void Picture::overview()
{
    const Axis whole{400, 2000};
    text(30, overviewTop + 26, "name", QStringLiteral("All bands"));
    bar(left, overviewTop, right - left, 2 * laneHeight, "#f7f7f7");

    // Panels in the order of their frequencies, so that the ties do not cross.
    std::vector<unsigned> uplinks(m_bands.size() / 2);
    std::iota(uplinks.begin(), uplinks.end(), 0U);
    for (unsigned& uplink : uplinks)
        uplink *= 2;
    std::sort(uplinks.begin(), uplinks.end(), [this](unsigned a, unsigned b) {
        return m_bands[a].GetStartFreq() < m_bands[b].GetStartFreq();
    });
    double top = panelsTop;
    for (const unsigned uplink : uplinks) {
        panel(uplink, top, whole);
        top += panelPitch;
    }
    frequencies(whole, overviewTop + 2 * laneHeight);
}

void Picture::panel(unsigned uplink, double top, const Axis& whole)
{
    const Band& up = m_bands[uplink];
    const Band& down = m_bands[uplink + 1];
    double lowMHz = 1e9;
    double highMHz = 0;
    int count = 0;
    for (const unsigned index : {uplink, uplink + 1}) {
        for (const ChannelRange& range : channelRanges(m_bands[index])) {
            lowMHz = std::min(lowMHz, range.firstHz / 1e6);
            highMHz = std::max(highMHz, range.lastHz / 1e6);
            count += index == uplink ? range.count() : 0;
            const double x = whole.at(range.firstHz / 1e6);
            bar(x, overviewTop + (index % 2) * laneHeight,
                std::max(whole.at(range.lastHz / 1e6) - x, 1.0), laneHeight, colours[index % 2],
                m_bands[index].GetName());
        }
    }
    const double margin = 0.02 * (highMHz - lowMHz);
    const Axis axis{lowMHz - margin, highMHz + margin};

    text(30, top + 18, "name", up.GetName().section(u' ', 0, 0));
    text(30, top + 36, "note", QStringLiteral("%1 channels").arg(count));
    text(30, top + 52, "note",
         QStringLiteral("pairs %1 apart")
             .arg(megahertzText(down.GetStartFreq() - up.GetStartFreq())));
    bar(left, top, right - left, barHeight, "#f7f7f7");
    for (const unsigned index : {uplink, uplink + 1})
        channels(m_bands[index], index % 2 == 1, axis, top);
    frequencies(axis, top + barHeight);
}

void Picture::frequencies(const Axis& axis, double y)
{
    line(left, y, right, y, "#888888");
    const double step = roundStep(axis.perMHz(), 58);
    const double steps = std::floor(axis.highMHz / step);
    for (auto i = static_cast<int>(std::ceil(axis.lowMHz / step)); i <= steps; ++i) {
        const double mhz = i * step;
        line(axis.at(mhz), y, axis.at(mhz), y + 5, "#888888");
        text(axis.at(mhz), y + 17, "mark", QString::number(mhz, 'g', 8));
    }
    text(right - 26, y + 30, "note", QStringLiteral("MHz"));
}

void Picture::channels(const Band& band, bool down, const Axis& axis, double y)
{
    Band tuned = band;
    const double pitch = axis.perMHz() * band.GetStepWidth() / 1e6;
    const double thickness = pitch > 4 ? pitch - 1 : pitch * 0.8;
    bool isExtended = false;
    for (const ChannelRange& range : channelRanges(band)) {
        const char* colour = isExtended ? paleColours[down] : colours[down];
        for (unsigned long channel = range.first; channel <= range.last; ++channel) {
            const double hertz = tuned.GetFrequency(channel);
            bar(axis.at(hertz / 1e6) - thickness / 2, y, thickness, barHeight, colour,
                QStringLiteral("%1, channel %2: %3")
                    .arg(band.GetName())
                    .arg(channel)
                    .arg(megahertzText(hertz)));
        }
        channelNumbers(range, axis, y);
        isExtended = true;
    }
}

/// The first channel, round numbers and the last one, above the bars.
void Picture::channelNumbers(const ChannelRange& range, const Axis& axis, double y)
{
    constexpr double room = 36;
    const double first = axis.at(range.firstHz / 1e6);
    const double last = axis.at(range.lastHz / 1e6);
    const double perChannel = (last - first) / static_cast<double>(range.last - range.first);
    const auto mark = [&](double x, unsigned long channel) {
        line(x, y - 4, x, y, "#444444");
        text(x, y - 7, "channel", QString::number(channel));
    };
    mark(first, range.first);
    // To the left, because another range may begin right behind this one.
    line(last, y - 4, last, y, "#444444");
    text(last - 5, y - 7, "ending", QString::number(range.last));
    const auto step = static_cast<unsigned long>(std::max(5.0, roundStep(perChannel, room)));
    for (unsigned long channel = (range.first / step + 1) * step; channel < range.last;
         channel += step) {
        const double x = first + perChannel * static_cast<double>(channel - range.first);
        if (x - first >= room && last - x >= room)
            mark(x, channel);
    }
}

} // namespace

QString planPicture()
{
    return Picture().drawn();
}

} // namespace vlbase::tool::band

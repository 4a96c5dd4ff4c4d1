// Any text that parses as XML is read as a band, and what the band then is must come back from its
// own XML form.

#include <VLBase/basetypes/band.h>
#include <VLBase/errorhandling/errorhandler.h>

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

QByteArray toXml(const Band& band)
{
    QDomDocument doc;
    QDomElement root = doc.createElement(QStringLiteral("Band"));
    doc.appendChild(root);
    band.Save(doc, root);
    return doc.toByteArray(-1);
}

bool readInto(Band& band, const QByteArray& xml)
{
    QDomDocument doc;
    if (!doc.setContent(xml))
        return false;
    QDomElement root = doc.documentElement();
    band.Read(doc, root);
    return true;
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// Every operation ends and leaves the cursor at a channel.
void exercise(Band band)
{
    unsigned long channel = 0;
    bool up = false;
    bool down = false;
    band.FindFrequency(band.GetStartFreq(), channel);
    for (const bool upwards : {true, false})
        band.GetNextFrequency(upwards, up, down, band.GetStartFreq(), 0.0, 1e10);
    band.AddSubBand(band.GetStepWidth(), band.GetOffset(), band.GetStopChannel(),
                    band.GetStartChannel(), 7);
    for (const bool upwards : {true, false})
        band.GetNextFrequency(upwards, up, down, 0.0, band.GetOffset(), band.GetStartFreq());
    require(band.GetChannelValue() <= 0xFFFFFFFF);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    ErrorHandler::Interface()->SetMessageMask(0); // Nobody takes the traces here.
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Band band;
    if (!readInto(band, QByteArray(reinterpret_cast<const char*>(data), qsizetype(size))))
        return 0;
    exercise(band);

    // Once through the form's precision; from then on nothing may change any more.
    const QByteArray saved = toXml(band);
    Band first;
    require(readInto(first, saved));
    if (!saved.contains("<Name"))
        return 0; // refused for its name
    require(first.GetName() == band.GetName());
    Band second;
    require(readInto(second, toXml(first)));
    require(toXml(second) == toXml(first));
    if (!std::isnan(first.GetStepWidth()) && !std::isnan(first.GetOffset()) &&
        !std::isnan(first.GetStartFreq()))
        require(second == first);
    return 0;
}

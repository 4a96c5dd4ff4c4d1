// Any doubles through projections, shifts and references: everything ends, nothing leaves its
// range, and references come back.

#include <VLBase/coord/coord.h>
#include <VLBase/coord/coordconversion.h>
#include <VLBase/coord/merccoordtrans.h>
#include <VLBase/coord/utm.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

struct Input
{
    double latitude;
    double longitude;
    std::int32_t code;
    std::int32_t meridian;
};

void transformNumbers(const Input& input)
{
    const auto [latitude, longitude, code, meridian] = input;
    const CMercCoordTrans transform;
    transform.LL2TM(true, latitude, longitude, code, meridian);
    transform.TM2LL(true, latitude, longitude, code, meridian);
    transform.FromWGS84(true, latitude, longitude, code, meridian);
    transform.ToWGS84(false, latitude, longitude, code, meridian);
    const long zone = transform.UTMLongZone(latitude, longitude);
    require(zone >= -1 && zone <= 61);
    double x = 0;
    double y = 0;
    transform.convertRt90gon(longitude, latitude, x, y);
    QString text;
    LLtoUTM(code, latitude, longitude, x, y, text);
    UTMtoLL(code, latitude, longitude, text, x, y);
}

void writeReference(const Input& input, int projection)
{
    const CMercCoordTrans transform;
    const QString reference = transform.LL2GR(input.latitude, input.longitude, projection);
    if (reference.startsWith(u'#') || reference == QStringLiteral("Invalid"))
        return;
    double latitude = 0;
    double longitude = 0;
    require(transform.GR2LL(reference, projection, latitude, longitude));
    require(transform.LL2GR(latitude, longitude, projection) == reference);
}

void writeTexts(const Input& input)
{
    const Coord position(input.longitude, input.latitude);
    for (int value = 0; value < 8; ++value) {
        const auto format = static_cast<CoordFormat>(value);
        const QString text = position.GetText(format);
        if (text.startsWith(u'#'))
            continue;
        require(position.IsValid());
        Coord read(1000, 1000); // which no text names
        read.SetText(text, format);
        require(read.IsValid());
        require(read.GetText(format) == text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input = {};
    if (size < sizeof input)
        return 0;
    std::memcpy(&input, data, sizeof input);
    transformNumbers(input);
    writeTexts(input);
    for (const int projection : {1, 2, 3, 4, -4, 10, 11})
        writeReference(input, projection);
    return 0;
}

// Any text through the readers of positions: what they take, they write again; what they refuse
// leaves no trace.

#include "tools/vlbase/coord/recognizer.h"

#include <VLBase/coord/coord.h>
#include <VLBase/coord/coordconversion.h>
#include <VLBase/coord/merccoordtrans.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void readFormat(const QString& text, CoordFormat format)
{
    Coord typed(77, 77);
    typed.SetString(text, format);
    require(typed.IsValid());

    double longitude = 1000;
    double latitude = 1000;
    if (StringToCoord(text, format, longitude, latitude) != CoordOk) {
        require(longitude == 1000 && latitude == 1000);
        return;
    }
    const Coord position(longitude, latitude);
    require(position.IsValid());
    const QString plain = position.GetText(format);
    require(plain.compare(text, Qt::CaseInsensitive) == 0 ||
            position.GetString(format).compare(text, Qt::CaseInsensitive) == 0);
    Coord again;
    again.SetText(plain, format);
    require(again == position);
    require(std::signbit(again.GetLongitude()) == std::signbit(longitude));
}

void readReference(const QString& text, int projection)
{
    const CMercCoordTrans transform;
    double latitude = 0;
    double longitude = 0;
    if (!transform.GR2LL(text, projection, latitude, longitude))
        return;
    require(std::abs(latitude) <= 91 && std::abs(longitude) <= 181);
    const QString reference = transform.LL2GR(latitude, longitude, projection);
    require(!reference.startsWith(u'#'));
    require(transform.GR2LL(reference, projection, latitude, longitude));
    require(transform.LL2GR(latitude, longitude, projection) == reference);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(size));
    for (int format = 0; format < 8; ++format)
        readFormat(text, static_cast<CoordFormat>(format));
    for (const int projection : {1, 2, 3, 4, -4, 10, 11})
        readReference(text, projection);

    if (const auto reading = vlbase::tool::coord::Recognizer().read(bytes))
        require(reading->position.IsValid());
    return 0;
}

// Window geometry records of any bytes, as they are and as hexadecimal digits.

#include <VLBase/utilities/geometryarrayparser.h>

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isSame(const GeometryArrayParser& a, const GeometryArrayParser& b)
{
    return a.isValid() == b.isValid() && a.majorVersion() == b.majorVersion() &&
           a.minorVersion() == b.minorVersion() && a.frameGeometry() == b.frameGeometry() &&
           a.normalGeometry() == b.normalGeometry() && a.screenNumber() == b.screenNumber() &&
           a.maximized() == b.maximized() && a.fullScreen() == b.fullScreen();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray record(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const GeometryArrayParser parser(record);
    require(parser.isValid() == (size >= 6 && record.startsWith("\x01\xd9\xd0\xcb") &&
                                 record[4] == 0 && record[5] == 1));
    require(isSame(parser, GeometryArrayParser(QString::fromLatin1(record.toHex(' ')))));
    // What lies behind the known fields changes nothing.
    constexpr qsizetype knownBytes = 46;
    if (record.size() > knownBytes)
        require(isSame(parser, GeometryArrayParser(record.left(knownBytes))));
    GeometryArrayParser second(record);
    second.setHexString(QString::fromUtf8(record));
    return 0;
}

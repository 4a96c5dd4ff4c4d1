// A document in another shape is one that has the same compact form, and comes out as it is when it
// is shaped again; by a device as by a text.

#include <VLBase/utilities/xmlformat.h>

#include <QBuffer>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    XmlFormat format;
    format.setLineWidth(30);
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QBuffer from(&bytes), to;
    from.open(QBuffer::ReadOnly);
    to.open(QBuffer::WriteOnly);
    XmlFormat::Error deviceError;
    const bool isRead = format.indent(from, to, &deviceError);
    require(isRead == deviceError.reason.isEmpty());
    require(isRead || to.data().isEmpty());

    const QString xml = QString::fromUtf8(bytes);
    XmlFormat::Error error;
    const QString indented = format.indented(xml, &error);
    if (!error.reason.isEmpty()) {
        require(indented == xml && error.line > 0 && error.column > 0);
        return 0;
    }
    require(format.indented(indented, &error) == indented && error.reason.isEmpty());
    const QString compact = format.compacted(xml);
    require(format.compacted(indented) == compact);
    require(format.indented(compact) == indented);
    if (isRead && xml.toUtf8() == bytes && !bytes.contains("encoding"))
        require(to.data() == indented.toUtf8());
    return 0;
}

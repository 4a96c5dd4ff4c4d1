#include "nativeicon.h"

#include <VLBase/platform/iconlibrary.h>

#include <QLibrary>

namespace vlbase::platform {

QImage imageFromLibrary(const QString& library, const QString& resource)
{
    const QString file = library + QStringLiteral(".dll");
    if (!QLibrary(file).load())
        return {};
    const NativeIcon icon(file.toStdString(), resource.toStdString());
    return icon.handle() == nullptr ? QImage() : QImage::fromHICON(icon.handle());
}

} // namespace vlbase::platform

#include <VLBase/os/internal/iconlibrary.h>
#include <VLBase/platform/windows/nativeicon.h>

#include <QLibrary>

QImage vlbase::imageFromLibrary(const QString& library, const QString& resource)
{
    const QString file = library + QStringLiteral(".dll");
    if (!QLibrary(file).load())
        return {};
    const platform::NativeIcon icon(file.toStdString(), resource.toStdString());
    return icon.handle() == nullptr ? QImage() : QImage::fromHICON(icon.handle());
}

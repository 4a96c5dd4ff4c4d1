#include <VLBase/os/internal/iconlibrary.h>

#include <QLibrary>

QImage vlbase::imageFromLibrary(const QString& library, const QString& resource)
{
    // Its resources are there while it is loaded, which does not end with this object.
    if (!QLibrary(library).load())
        return {};
    return QImage(QStringLiteral(":/%1/%2").arg(library, resource));
}

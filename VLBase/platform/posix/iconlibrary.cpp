#include <VLBase/platform/iconlibrary.h>

#include <QLibrary>

namespace vlbase::platform {

QImage imageFromLibrary(const QString& library, const QString& resource)
{
    // Its resources are there while it is loaded, which does not end with this object.
    if (!QLibrary(library).load())
        return {};
    return QImage(QStringLiteral(":/%1/%2").arg(library, resource));
}

} // namespace vlbase::platform

#pragma once

#include <QImage>
#include <QString>

namespace vlbase::platform {

/// The picture \a resource of a dynamic library, which is loaded for it: an icon of that name among
/// the library's resources on Windows; elsewhere the file of that name in the folder of the
/// library's name among its Qt resources, as in ":/IconDll/IDI_ICON1". Null when there is none.
QImage imageFromLibrary(const QString& library, const QString& resource);

} // namespace vlbase::platform

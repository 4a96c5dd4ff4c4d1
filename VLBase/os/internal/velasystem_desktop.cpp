// What a user sees and hears beside the windows: opened documents, icons, sounds.

#include "velasystem.h"

#include <VLBase/platform/iconlibrary.h>
#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/shellopen.h>
#include <VLBase/platform/sounds.h>

#include <QGuiApplication>
#include <QPixmap>

namespace platform = vlbase::platform;

qint64 VelaSystem::ShellExec(const QString& target)
{
    return platform::openForUser(target.toStdString());
}

int VelaSystem::SystemSound(int)
{
    return platform::startTone();
}

void VelaSystem::Play(void* sound)
{
    if (reinterpret_cast<quintptr>(sound) == 1)
        platform::playMessageSound();
    else
        platform::playTone();
}

QIcon VelaSystem::GetIconById(int id)
{
    const int number = id == 0 ? 1 : id + 100;
    const QString name = QStringLiteral("IDI_ICON%1").arg(number);
    const QImage image = platform::imageFromLibrary(QStringLiteral("IconDll"), name);
    // A pixmap needs the window system.
    if (image.isNull() || qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
        platform::setLastError(platform::Fault::NotFound);
        return {};
    }
    return QIcon(QPixmap::fromImage(image));
}

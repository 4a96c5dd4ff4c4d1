#include "lastowner.h"

#include <QCoreApplication>
#include <QThread>

namespace vlbase::qthelpers {

void deleteWithEventLoop(QObject* object)
{
    QCoreApplication* application = QCoreApplication::instance();
    if (application && application->thread() == object->thread()) {
        // A deletion for later would never come any more.
        QObject::connect(application, &QObject::destroyed, object, [object] { delete object; });
    } else {
        // An ending thread still carries out the deletions that it owes.
        QObject::connect(object->thread(), &QThread::finished, object, &QObject::deleteLater);
    }
}

} // namespace vlbase::qthelpers

#include "descriptor.h"

#include <VLBase/platform/ownfile.h>

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vlbase::platform {

namespace {

// With all rights that the user's mask leaves. Not blocking, because a pipe may stand there.
constexpr int openFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr mode_t openMode = 0666;

bool isOwn(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && status.st_uid == ::geteuid() &&
           (!S_ISREG(status.st_mode) || status.st_nlink <= 1);
}

/// \a isForeign tells whether somebody else's file or a link stands there.
bool openUnder(QFile& file, const QString& path, bool& isForeign)
{
    const int descriptor =
        behindStandardStreams(::open(QFile::encodeName(path).constData(), openFlags, openMode));
    isForeign = descriptor < 0 ? errno == ELOOP || errno == EACCES : !isOwn(descriptor);
    if (descriptor < 0)
        return false;
    if (isForeign) {
        ::close(descriptor);
        return false;
    }
    file.setFileName(path);
    return file.open(descriptor, QIODevice::ReadWrite | QIODevice::Unbuffered,
                     QFileDevice::AutoCloseHandle);
}

QString withUserNumber(const QString& path)
{
    const QFileInfo info(path);
    const QString extension = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    return path.chopped(extension.size()) + u'.' + QString::number(::geteuid()) + extension;
}

} // namespace

bool openOwnFile(QFile& file)
{
    const QString path = file.fileName();
    bool isForeign = false;
    return openUnder(file, path, isForeign) ||
           (isForeign && openUnder(file, withUserNumber(path), isForeign));
}

} // namespace vlbase::platform

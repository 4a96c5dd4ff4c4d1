#include <VLBase/platform/ownfile.h>

#include <QFile>

namespace vlbase::platform {

// The temporary directory is the user's own.
bool openOwnFile(QFile& file)
{
    return file.open(QIODevice::ReadWrite | QIODevice::Unbuffered);
}

} // namespace vlbase::platform

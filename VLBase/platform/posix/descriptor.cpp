#include "descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace vlbase::platform {

int behindStandardStreams(int descriptor)
{
    if (descriptor < 0 || descriptor > STDERR_FILENO)
        return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return moved;
}

} // namespace vlbase::platform

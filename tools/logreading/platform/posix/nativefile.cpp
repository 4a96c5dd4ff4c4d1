#include "tools/logreading/platform/nativefile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vlbase::tool::platform {
namespace {

int descriptorOf(std::intptr_t handle)
{
    return static_cast<int>(handle);
}

FileIdentity identityFrom(const struct stat& status)
{
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
            true};
}

} // namespace

NativeFile::~NativeFile()
{
    close();
}

NativeFile::NativeFile(NativeFile&& other) noexcept
    : m_handle(std::exchange(other.m_handle, -1))
{
}

NativeFile& NativeFile::operator=(NativeFile&& other) noexcept
{
    std::swap(m_handle, other.m_handle);
    return *this;
}

bool NativeFile::open(const std::string& name, Mode mode)
{
    close();
    // Not blocking: a name that turns out to be a pipe must not hang the program.
    const int flags =
        mode == Mode::Read ? O_RDONLY | O_NONBLOCK : O_RDWR | O_APPEND | O_CREAT | O_NONBLOCK;
    m_handle = ::open(name.c_str(), flags | O_CLOEXEC, 0644);
    return isOpen();
}

bool NativeFile::openAgain(const NativeFile& other)
{
    close();
    m_handle = fcntl(descriptorOf(other.m_handle), F_DUPFD_CLOEXEC, 0);
    return isOpen();
}

void NativeFile::close()
{
    if (isOpen())
        ::close(descriptorOf(std::exchange(m_handle, -1)));
}

std::int64_t NativeFile::size() const
{
    struct stat status = {};
    return fstat(descriptorOf(m_handle), &status) == 0 ? status.st_size : -1;
}

std::int64_t NativeFile::readAt(std::int64_t offset, char* data, std::size_t size) const
{
    ssize_t got = 0;
    do
        got = pread(descriptorOf(m_handle), data, size, offset);
    while (got < 0 && errno == EINTR);
    return got;
}

std::int64_t NativeFile::append(const char* data, std::size_t size)
{
    ssize_t put = 0;
    do
        put = write(descriptorOf(m_handle), data, size);
    while (put < 0 && errno == EINTR);
    return put;
}

bool NativeFile::cutTo(std::int64_t size)
{
    return ftruncate(descriptorOf(m_handle), size) == 0;
}

FileIdentity NativeFile::identity() const
{
    struct stat status = {};
    return fstat(descriptorOf(m_handle), &status) == 0 ? identityFrom(status) : FileIdentity();
}

bool NativeFile::isRegular() const
{
    struct stat status = {};
    return fstat(descriptorOf(m_handle), &status) == 0 && S_ISREG(status.st_mode);
}

bool NativeFile::lock()
{
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    return fcntl(descriptorOf(m_handle), F_OFD_SETLK, &whole) == 0 ||
           (errno != EAGAIN && errno != EACCES);
}

FileIdentity identityOf(const std::string& name)
{
    struct stat status = {};
    return stat(name.c_str(), &status) == 0 ? identityFrom(status) : FileIdentity();
}

bool renameFile(const std::string& from, const std::string& to)
{
    return std::rename(from.c_str(), to.c_str()) == 0;
}

bool removeFile(const std::string& name)
{
    return unlink(name.c_str()) == 0;
}

} // namespace vlbase::tool::platform

#include "sharedfile.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/namedmapping.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <utility>

namespace vlbase::platform {

class NamedMapping::Handle
{
public:
    SharedFile file;
    bool prolongsLife = false;
};

NamedMapping::NamedMapping() = default;

NamedMapping::~NamedMapping()
{
    close();
}

NamedMapping::NamedMapping(NamedMapping&& other) noexcept
    : m_handle(std::move(other.m_handle))
    , m_data(std::exchange(other.m_data, nullptr))
    , m_size(std::exchange(other.m_size, 0))
{
}

NamedMapping& NamedMapping::operator=(NamedMapping&& other) noexcept
{
    std::swap(m_handle, other.m_handle);
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    return *this;
}

namespace {

// Every process that has the memory open has a shared lock on it. Without one it is what killed
// processes left behind.
NamedMapping::Opened join(SharedFile& file)
{
    if (file.tryLock(SharedFile::LockType::Exclusive)) {
        file.unlink();
        return NamedMapping::Opened::Absent;
    }
    if (!file.tryLock(SharedFile::LockType::Shared))
        return NamedMapping::Opened::Refused;
    return file.isNamed() ? NamedMapping::Opened::Done : NamedMapping::Opened::Absent;
}

std::byte* mapWhole(const SharedFile& file, std::size_t size, int protection)
{
    void* const base = mmap(nullptr, size, protection, MAP_SHARED, file.descriptor(), 0);
    return base == MAP_FAILED ? nullptr : static_cast<std::byte*>(base);
}

} // namespace

NamedMapping::Opened NamedMapping::open(const std::string& name, Access access)
{
    const bool glance = access == Access::Glance;
    SharedFile file;
    switch (file.open(name, glance)) {
    case SharedFile::Opened::Done:
        break;
    case SharedFile::Opened::Absent:
        return Opened::Absent;
    case SharedFile::Opened::Refused:
        return Opened::Refused;
    }
    if (glance && !file.isLockedByOthers())
        return Opened::Absent;
    if (!glance) {
        const Opened joined = join(file);
        if (joined != Opened::Done)
            return joined;
    }
    const long long size = file.size();
    if (size <= 0)
        return Opened::Refused;
    const auto bytes = static_cast<std::size_t>(size);
    std::byte* const data = mapWhole(file, bytes, glance ? PROT_READ : PROT_READ | PROT_WRITE);
    if (!data)
        return Opened::Refused;
    m_handle = std::make_unique<Handle>(Handle{std::move(file), !glance});
    m_data = data;
    m_size = bytes;
    return Opened::Done;
}

bool NamedMapping::create(const std::string& name, std::size_t size)
{
    SharedFile file;
    if (file.create(name) != SharedFile::Opened::Done)
        return false;
    // Memory that is only promised would end the process that touches it when there is none.
    const int error = posix_fallocate(file.descriptor(), 0, static_cast<off_t>(size));
    const bool backed = error == 0 && file.tryLock(SharedFile::LockType::Shared);
    std::byte* const data = backed ? mapWhole(file, size, PROT_READ | PROT_WRITE) : nullptr;
    if (!data) {
        setLastError(static_cast<std::uint32_t>(error != 0 ? error : errno));
        file.unlink();
        return false;
    }
    m_handle = std::make_unique<Handle>(Handle{std::move(file), true});
    m_data = data;
    m_size = size;
    return true;
}

void NamedMapping::close()
{
    if (!m_handle)
        return;
    munmap(m_data, m_size);
    m_data = nullptr;
    m_size = 0;
    SharedFile& file = m_handle->file;
    if (m_handle->prolongsLife && file.tryLock(SharedFile::LockType::Exclusive) && file.isNamed())
        file.unlink();
    m_handle.reset();
}

} // namespace vlbase::platform

#include "windowsnames.h"

#include <VLBase/platform/namedmapping.h>

#include <cstdint>
#include <utility>
#include <windows.h>

namespace vlbase::platform {

class NamedMapping::Handle
{
public:
    explicit Handle(HANDLE handle)
        : mapping(handle)
    {
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        if (view)
            UnmapViewOfFile(view);
        CloseHandle(mapping);
    }

    HANDLE mapping;
    void* view = nullptr;
};

NamedMapping::NamedMapping() = default;
NamedMapping::~NamedMapping() = default;

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

NamedMapping::Opened NamedMapping::open(const std::string& name, Access access)
{
    const DWORD wanted = access == Access::Glance ? FILE_MAP_READ : FILE_MAP_ALL_ACCESS;
    const HANDLE mapping = OpenFileMappingW(wanted, FALSE, wideName(name).c_str());
    if (!mapping)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? Opened::Absent : Opened::Refused;
    auto handle = std::make_unique<Handle>(mapping);
    handle->view = MapViewOfFile(mapping, wanted, 0, 0, 0);
    MEMORY_BASIC_INFORMATION information = {};
    if (!handle->view || !VirtualQuery(handle->view, &information, sizeof information))
        return Opened::Refused;
    m_data = static_cast<std::byte*>(handle->view);
    m_size = information.RegionSize;
    m_handle = std::move(handle);
    return Opened::Done;
}

bool NamedMapping::create(const std::string& name, std::size_t size)
{
    const std::uint64_t bytes = size;
    const HANDLE mapping = CreateFileMappingW(
        INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, static_cast<DWORD>(bytes >> 32),
        static_cast<DWORD>(bytes & 0xFFFFFFFFu), wideName(name).c_str());
    if (!mapping)
        return false;
    const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
    auto handle = std::make_unique<Handle>(mapping);
    if (existed)
        return false;
    handle->view = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    if (!handle->view)
        return false;
    m_data = static_cast<std::byte*>(handle->view);
    m_size = size;
    m_handle = std::move(handle);
    return true;
}

void NamedMapping::close()
{
    m_handle.reset();
    m_data = nullptr;
    m_size = 0;
}

} // namespace vlbase::platform

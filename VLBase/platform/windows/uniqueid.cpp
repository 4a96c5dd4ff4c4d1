#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/uniqueid.h>

#include <algorithm>

// The other needs <windows.h> before it.
// clang-format off
#include <windows.h>
#include <objbase.h>
// clang-format on

namespace vlbase::platform {

std::optional<UniqueId> createUniqueId()
{
    GUID guid{};
    const HRESULT result = ::CoCreateGuid(&guid);
    if (FAILED(result)) {
        setLastError(static_cast<std::uint32_t>(result));
        return std::nullopt;
    }
    UniqueId id{static_cast<std::uint32_t>(guid.Data1), guid.Data2, guid.Data3, {}};
    std::copy(std::begin(guid.Data4), std::end(guid.Data4), id.data4.begin());
    return id;
}

} // namespace vlbase::platform

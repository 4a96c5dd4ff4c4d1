#include <VLBase/platform/lasterror.h>

#include <windows.h>

namespace vlbase::platform {

std::uint32_t lastError()
{
    return ::GetLastError();
}

void setLastError(std::uint32_t code)
{
    ::SetLastError(code);
}

void setLastErrorNotSupported()
{
    ::SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
}

} // namespace vlbase::platform

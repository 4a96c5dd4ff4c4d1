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

void setLastError(Fault fault)
{
    switch (fault) {
    case Fault::InvalidArgument:
        return setLastError(ERROR_INVALID_PARAMETER);
    case Fault::TextTooLong:
        return setLastError(ERROR_BAD_LENGTH);
    case Fault::NotFound:
        return setLastError(ERROR_NOT_FOUND);
    case Fault::NotPermitted:
        return setLastError(ERROR_ACCESS_DENIED);
    case Fault::NoAnswer:
        return setLastError(ERROR_TIMEOUT);
    }
}

void setLastErrorNotSupported()
{
    ::SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
}

} // namespace vlbase::platform

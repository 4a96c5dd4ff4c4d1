#include <VLBase/platform/lasterror.h>

#include <cerrno>

namespace vlbase::platform {

namespace {

thread_local std::uint32_t s_code = 0;

} // namespace

std::uint32_t lastError()
{
    return s_code;
}

void setLastError(std::uint32_t code)
{
    s_code = code;
}

void setLastError(Fault fault)
{
    switch (fault) {
    case Fault::InvalidArgument:
        return setLastError(EINVAL);
    case Fault::TextTooLong:
        return setLastError(E2BIG);
    case Fault::NotFound:
        return setLastError(ESRCH);
    case Fault::NotPermitted:
        return setLastError(EPERM);
    case Fault::NoAnswer:
        return setLastError(ETIMEDOUT);
    }
}

void setLastErrorNotSupported()
{
    s_code = ENOSYS;
}

} // namespace vlbase::platform

#pragma once

#include <memory>
#include <windows.h>

namespace vlbase::platform {

/// Closes a handle and leaves the last error code as it was: the failed call's before.
struct CloseQuietly
{
    using pointer = HANDLE;
    void operator()(HANDLE handle) const
    {
        const DWORD error = ::GetLastError();
        ::CloseHandle(handle);
        ::SetLastError(error);
    }
};

/// The handle of something that failure tells by null.
using OwnedHandle = std::unique_ptr<HANDLE, CloseQuietly>;

} // namespace vlbase::platform

#include "ownedhandle.h"
#include "windowsnames.h"

#include <VLBase/platform/openinglock.h>

#include <windows.h>

namespace vlbase::platform {

class OpeningLock::Handle
{
public:
    explicit Handle(HANDLE handle)
        : mutex(handle)
    {
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        if (held)
            ReleaseMutex(mutex.get());
    }

    OwnedHandle mutex;
    bool held = false;
};

OpeningLock::OpeningLock(const std::string& name, std::chrono::milliseconds timeout)
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, wideName(name).c_str());
    if (!mutex)
        return;
    auto handle = std::make_unique<Handle>(mutex);
    const DWORD result = WaitForSingleObject(mutex, static_cast<DWORD>(timeout.count()));
    handle->held = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    if (handle->held)
        m_handle = std::move(handle);
}

OpeningLock::~OpeningLock() = default;

} // namespace vlbase::platform

#include "ownedhandle.h"
#include "windowsnames.h"

#include <VLBase/platform/nativemutex.h>

#include <windows.h>

namespace vlbase::platform {

class NativeMutex::Handle
{
public:
    explicit Handle(HANDLE handle)
        : mutex(handle)
    {
    }

    OwnedHandle mutex;
};

NativeMutex::NativeMutex() = default;
NativeMutex::~NativeMutex() = default;
NativeMutex::NativeMutex(NativeMutex&& other) noexcept = default;
NativeMutex& NativeMutex::operator=(NativeMutex&& other) noexcept = default;

bool NativeMutex::open(const std::string& name)
{
    const HANDLE mutex = OpenMutexW(MUTEX_ALL_ACCESS, FALSE, wideName(name).c_str());
    m_handle = mutex ? std::make_unique<Handle>(mutex) : nullptr;
    return m_handle != nullptr;
}

bool NativeMutex::create(const std::string& name)
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, wideName(name).c_str());
    m_handle = mutex ? std::make_unique<Handle>(mutex) : nullptr;
    return m_handle != nullptr;
}

LockResult NativeMutex::lock(std::chrono::milliseconds timeout)
{
    if (!m_handle)
        return LockResult::Failed;
    switch (WaitForSingleObject(m_handle->mutex.get(), static_cast<DWORD>(timeout.count()))) {
    case WAIT_OBJECT_0:
        return LockResult::Owned;
    case WAIT_ABANDONED:
        return LockResult::OwnedAfterDeath;
    case WAIT_TIMEOUT:
        return LockResult::TimedOut;
    default:
        return LockResult::Failed;
    }
}

void NativeMutex::unlock()
{
    ReleaseMutex(m_handle->mutex.get());
}

void NativeMutex::leak()
{
    static_cast<void>(m_handle.release());
}

namespace {

// The kernel's own answer. Waiting with no time would do too, but would swallow the notice that
// a holder has died.
struct MutantInformation
{
    LONG currentCount;
    BOOLEAN ownedByCaller;
    BOOLEAN abandoned;
};
using QueryMutant = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);

constexpr DWORD mutantQueryState = 0x0001;

QueryMutant queryMutantFunction()
{
    const HMODULE library = GetModuleHandleW(L"ntdll.dll");
    return library ? reinterpret_cast<QueryMutant>(
                         reinterpret_cast<void*>(GetProcAddress(library, "NtQueryMutant")))
                   : nullptr;
}

} // namespace

bool NativeMutex::isHeld(const std::string& name)
{
    const QueryMutant queryMutant = queryMutantFunction();
    const OwnedHandle mutex(OpenMutexW(mutantQueryState, FALSE, wideName(name).c_str()));
    if (!mutex)
        return false;
    MutantInformation information = {};
    return queryMutant &&
           queryMutant(mutex.get(), 0, &information, sizeof information, nullptr) >= 0 &&
           (information.currentCount <= 0 || information.abandoned);
}

} // namespace vlbase::platform

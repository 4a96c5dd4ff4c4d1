#include "utf16.h"

#include <VLBase/platform/dynamiclibrary.h>

#include <windows.h>

namespace vlbase::platform {

namespace {

HMODULE toHandle(std::uint64_t module)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface hands handles out as numbers.
    return reinterpret_cast<HMODULE>(static_cast<std::uintptr_t>(module));
}

} // namespace

std::uint64_t loadLibrary(const std::string& path)
{
    return reinterpret_cast<std::uintptr_t>(::LoadLibraryW(toUtf16(path).c_str()));
}

bool freeLibrary(std::uint64_t module)
{
    return ::FreeLibrary(toHandle(module)) != FALSE;
}

int (*findFunction(std::uint64_t module, const std::string& name))()
{
    // A null handle would mean the program itself.
    if (module == 0) {
        ::SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const FARPROC function = ::GetProcAddress(toHandle(module), name.c_str());
    return reinterpret_cast<int (*)()>(reinterpret_cast<void*>(function));
}

} // namespace vlbase::platform

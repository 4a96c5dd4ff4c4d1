#include <VLBase/platform/dynamiclibrary.h>
#include <VLBase/platform/lasterror.h>

#include <cerrno>
#include <dlfcn.h>
#include <map>
#include <mutex>

namespace vlbase::platform {

namespace {

/// The handles given out, with the number of loads that are not freed yet. The loader itself
/// would follow any other value as a pointer.
struct LoadedLibraries
{
    std::mutex lock;
    std::map<std::uint64_t, int> loads;
};

LoadedLibraries& loadedLibraries()
{
    static auto& libraries = *new LoadedLibraries; // static destructors may still free theirs
    return libraries;
}

void* toPointer(std::uint64_t module)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface hands handles out as numbers.
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(module));
}

} // namespace

std::uint64_t loadLibrary(const std::string& path)
{
    // An empty path would mean the program itself.
    void* handle = path.empty() ? nullptr : ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        setLastError(ELIBACC);
        return 0;
    }
    const auto module = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(handle));
    LoadedLibraries& libraries = loadedLibraries();
    const std::lock_guard<std::mutex> guard(libraries.lock);
    ++libraries.loads[module];
    return module;
}

bool freeLibrary(std::uint64_t module)
{
    LoadedLibraries& libraries = loadedLibraries();
    {
        const std::lock_guard<std::mutex> guard(libraries.lock);
        const auto found = libraries.loads.find(module);
        if (found == libraries.loads.end()) {
            setLastError(EINVAL);
            return false;
        }
        if (--found->second == 0)
            libraries.loads.erase(found);
    }
    // Outside the lock, because the library's destructors may load and free others.
    if (::dlclose(toPointer(module)) == 0)
        return true;
    setLastError(EINVAL);
    return false;
}

int (*findFunction(std::uint64_t module, const std::string& name))()
{
    LoadedLibraries& libraries = loadedLibraries();
    {
        const std::lock_guard<std::mutex> guard(libraries.lock);
        if (libraries.loads.count(module) == 0) {
            setLastError(EINVAL);
            return nullptr;
        }
    }
    void* function = ::dlsym(toPointer(module), name.c_str());
    if (function == nullptr)
        setLastError(ENOENT);
    return reinterpret_cast<int (*)()>(function);
}

} // namespace vlbase::platform

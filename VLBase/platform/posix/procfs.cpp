#include "procfs.h"

#include <VLBase/platform/lasterror.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <memory>

namespace vlbase::platform {

std::vector<int> numbersInFolder(const char* path)
{
    struct Close
    {
        void operator()(DIR* folder) const { ::closedir(folder); }
    };
    const std::unique_ptr<DIR, Close> folder(::opendir(path));
    if (!folder) {
        setLastError(static_cast<std::uint32_t>(errno));
        return {};
    }
    std::vector<int> numbers;
    while (const dirent* entry = ::readdir(folder.get())) {
        const int number = std::atoi(static_cast<const char*>(entry->d_name));
        if (number > 0)
            numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

} // namespace vlbase::platform

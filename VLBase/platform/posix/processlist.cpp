#include "procfs.h"

#include <VLBase/platform/processlist.h>

#include <QString>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <unistd.h>

namespace vlbase::platform {

namespace {

std::string baseName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::string contentUpTo(const std::string& path, char end)
{
    std::ifstream file(path, std::ios::binary);
    std::string content;
    std::getline(file, content, end);
    return content;
}

/// What everyone may read of anyone's process. The name that the kernel keeps is cut at 15
/// characters; the first argument has it whole, but a program may have written there what it
/// likes, so it counts only as the continuation of the former. A thread of the kernel has none.
std::string publicName(const std::string& folder)
{
    const std::string kept = contentUpTo(folder + "comm", '\n');
    const std::string called = baseName(contentUpTo(folder + "cmdline", '\0'));
    return called.empty() || called.compare(0, kept.size(), kept) == 0 ? called : kept;
}

} // namespace

std::vector<int> processIds(std::size_t)
{
    return numbersInFolder("/proc");
}

std::string programName(int processId)
{
    const std::string folder = "/proc/" + std::to_string(processId) + '/';
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink((folder + "exe").c_str(), target.data(), target.size());
    if (length < 0)
        return errno == EACCES ? publicName(folder) : std::string();

    std::string name = baseName({target.data(), static_cast<std::size_t>(length)});
    // So does the kernel mark one whose file was replaced or removed meanwhile.
    const std::string mark = " (deleted)";
    if (name.size() > mark.size() &&
        name.compare(name.size() - mark.size(), mark.size(), mark) == 0)
        name.resize(name.size() - mark.size());
    return name;
}

bool isSameProgram(const std::string& one, const std::string& other)
{
    return QString::fromStdString(one).compare(QString::fromStdString(other),
                                               Qt::CaseInsensitive) == 0;
}

int processIdOf(const _PROCESS_INFORMATION& process)
{
    // Two handles stand before it.
    std::uint32_t id = 0;
    std::memcpy(&id, reinterpret_cast<const char*>(&process) + 2 * sizeof(void*), sizeof id);
    return static_cast<int>(id);
}

} // namespace vlbase::platform

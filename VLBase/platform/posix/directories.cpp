#include <VLBase/platform/directories.h>

#include <cstdlib>

namespace vlbase::platform {

std::string systemDirectory()
{
    return "/usr/bin";
}

std::string temporaryDirectory()
{
    const char* named = std::getenv("TMPDIR");
    std::string path = named == nullptr || *named == '\0' ? "/tmp" : named;
    if (path.back() != '/')
        path += '/';
    return path;
}

const char* userDirectoryVariable()
{
    return "HOME";
}

} // namespace vlbase::platform

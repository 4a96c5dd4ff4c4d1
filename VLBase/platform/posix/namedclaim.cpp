#include "sharedfile.h"

#include <VLBase/platform/namedclaim.h>

namespace vlbase::platform {

class NamedClaim::Handle
{
public:
    ~Handle() { file.unlink(); }

    SharedFile file;
};

NamedClaim::NamedClaim() = default;
NamedClaim::~NamedClaim() = default;
NamedClaim::NamedClaim(NamedClaim&& other) noexcept = default;
NamedClaim& NamedClaim::operator=(NamedClaim&& other) noexcept = default;

bool NamedClaim::take(const std::string& name)
{
    if (m_handle)
        return true;
    SharedFile file;
    if (file.claim(name) != SharedFile::Opened::Done)
        return false;
    m_handle = std::make_unique<Handle>();
    m_handle->file = std::move(file);
    return true;
}

void NamedClaim::release()
{
    m_handle.reset();
}

bool NamedClaim::isTaken(const std::string& name)
{
    SharedFile file;
    return file.open(name, true) == SharedFile::Opened::Done && file.isLockedByOthers();
}

bool NamedClaim::othersMayIgnore()
{
    return false;
}

} // namespace vlbase::platform

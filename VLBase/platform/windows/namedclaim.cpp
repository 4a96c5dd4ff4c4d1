#include "ownedhandle.h"
#include "windowsnames.h"

#include <VLBase/platform/namedclaim.h>

#include <windows.h>

namespace vlbase::platform {

class NamedClaim::Handle
{
public:
    explicit Handle(HANDLE handle)
        : event(handle)
    {
    }

    OwnedHandle event;
};

NamedClaim::NamedClaim() = default;
NamedClaim::~NamedClaim() = default;
NamedClaim::NamedClaim(NamedClaim&& other) noexcept = default;
NamedClaim& NamedClaim::operator=(NamedClaim&& other) noexcept = default;

// The claim is the existence of the event. Somebody who only looks has it open for a moment,
// so a refusal counts when it is repeated.
bool NamedClaim::take(const std::string& name)
{
    if (m_handle)
        return true;
    const std::wstring wide = wideName(name);
    for (int attempt = 0; attempt < 5; ++attempt) {
        if (attempt > 0)
            Sleep(1);
        const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, wide.c_str());
        const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
        if (!event)
            continue;
        auto handle = std::make_unique<Handle>(event);
        if (!existed) {
            m_handle = std::move(handle);
            return true;
        }
    }
    return false;
}

void NamedClaim::release()
{
    m_handle.reset();
}

bool NamedClaim::isTaken(const std::string& name)
{
    const OwnedHandle event(OpenEventW(SYNCHRONIZE, FALSE, wideName(name).c_str()));
    return event != nullptr;
}

bool NamedClaim::othersMayIgnore()
{
    return true;
}

} // namespace vlbase::platform

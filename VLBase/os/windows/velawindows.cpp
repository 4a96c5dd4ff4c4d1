#include <VLBase/os/internal/velasystem.h>
#include <VLBase/platform/windows/windowssockets.h>

namespace {

class VelaWindows final : public VelaSystem
{
    vlbase::platform::WindowsSockets m_sockets;
};

} // namespace

IVelaOS& VelaOS::Create()
{
    // Never destroyed, because static destructors may still call it.
    static VelaWindows& service = *new VelaWindows;
    return service;
}

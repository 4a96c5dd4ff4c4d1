#include <VLBase/os/internal/velasystem.h>

namespace {

class VelaLinux final : public VelaSystem
{
};

} // namespace

IVelaOS& VelaOS::Create()
{
    // Never destroyed, because static destructors may still call it.
    static VelaLinux& service = *new VelaLinux;
    return service;
}

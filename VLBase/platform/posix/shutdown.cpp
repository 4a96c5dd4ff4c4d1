#include "systembus.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/shutdown.h>
#include <VLBase/platform/thread.h>

#include <cerrno>

namespace vlbase::platform {

namespace {

/// Names of logind's methods.
struct Verbs
{
    const char* askWhether;
    const char* withFlags; // since systemd 246
    const char* plain;
};

Verbs verbsOf(SystemEnd end)
{
    if (end == SystemEnd::PowerOff)
        return {"CanPowerOff", "PowerOffWithFlags", "PowerOff"};
    return {"CanReboot", "RebootWithFlags", "Reboot"};
}

/// Whether this process may end the system without anyone being asked: "challenge" would ask for
/// a password. What "inhibited" asks for are programs that are not heard here.
std::uint32_t permission(const SystemBus& bus, const Verbs& verbs)
{
    if (!bus.isConnected())
        return ENOTCONN;
    const BusReply reply = bus.callLoginManager(verbs.askWhether);
    const bool isGranted = reply.text == "yes" || reply.text == "inhibited";
    return reply.error != 0 || isGranted ? reply.error : EPERM;
}

std::uint32_t begin(const SystemBus& bus, const Verbs& verbs)
{
    constexpr std::uint64_t skipInhibitors = 1U << 4; // refused as invalid where it is not known
    const BusReply reply = bus.callLoginManager(verbs.withFlags, skipInhibitors);
    // An answer that is missing may be so because the system ends.
    const bool isRefused = reply.error != 0 && reply.error != ETIMEDOUT && reply.error != ENOTCONN;
    return isRefused ? bus.callLoginManager(verbs.plain, false).error : reply.error;
}

} // namespace

bool endSystem(SystemEnd end)
{
    constexpr int waitMs = 2000; // in which other threads of this process can finish
    const Verbs verbs = verbsOf(end);
    const SystemBus bus;
    std::uint32_t error = permission(bus, verbs);
    if (error == 0) {
        alertableSleep(waitMs);
        error = begin(bus, verbs);
    }
    if (error != 0)
        setLastError(error);
    return error == 0;
}

} // namespace vlbase::platform

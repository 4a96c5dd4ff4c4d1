#include "systembus.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/machine.h>
#include <VLBase/platform/processes.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <pwd.h>
#include <sys/random.h>
#include <unistd.h>
#include <vector>

namespace vlbase::platform {

namespace {

struct Account
{
    uid_t id;
    std::string name;
};

/// \a lookUp is one of the getpw..._r functions without its key.
template <typename LookUp> std::optional<Account> findAccount(LookUp lookUp)
{
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = lookUp(&entry, buffer.data(), buffer.size(), &found)) == ERANGE)
        buffer.resize(buffer.size() * 2);
    if (found == nullptr) {
        setLastError(static_cast<std::uint32_t>(error == 0 ? ENOENT : error));
        return std::nullopt;
    }
    return Account{found->pw_uid, found->pw_name};
}

} // namespace

std::string computerName()
{
    std::array<char, 257> name{}; // the last one stays 0: a cut name need not be terminated
    if (::gethostname(name.data(), name.size() - 1) == 0)
        return name.data();
    setLastError(static_cast<std::uint32_t>(errno));
    return {};
}

std::string loginName()
{
    const auto account =
        findAccount([](auto... rest) { return ::getpwuid_r(::geteuid(), rest...); });
    return account ? account->name : std::string();
}

std::string securityIdentifier(const std::string& account)
{
    if (account.empty())
        return {};
    const auto found =
        findAccount([&](auto... rest) { return ::getpwnam_r(account.c_str(), rest...); });
    // The identifier that Samba gives to the users of a Unix machine.
    return found ? "S-1-22-1-" + std::to_string(found->id) : std::string();
}

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

std::optional<UniqueId> createUniqueId()
{
    UniqueId id{};
    if (::getentropy(&id, sizeof id) != 0) {
        setLastError(static_cast<std::uint32_t>(errno));
        return std::nullopt;
    }
    // RFC 4122, 4.4: version 4, variant 10.
    id.data3 = static_cast<std::uint16_t>((id.data3 & 0x0FFF) | 0x4000);
    id.data4[0] = static_cast<std::uint8_t>((id.data4[0] & 0x3F) | 0x80);
    return id;
}

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

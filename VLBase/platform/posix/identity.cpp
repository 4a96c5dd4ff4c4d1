#include <VLBase/platform/identity.h>
#include <VLBase/platform/lasterror.h>

#include <array>
#include <cerrno>
#include <optional>
#include <pwd.h>
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

} // namespace vlbase::platform

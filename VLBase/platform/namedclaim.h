#pragma once

#include <memory>
#include <string>

namespace vlbase::platform {

/// "Somebody alive has this role": held by one object of one process of a user at a time, and
/// free again when that object or its process is gone. Not bound to a thread.
class NamedClaim
{
public:
    NamedClaim();
    ~NamedClaim();
    NamedClaim(NamedClaim&& other) noexcept;
    NamedClaim& operator=(NamedClaim&& other) noexcept;

    /// Takes the claim without waiting; false while it is taken. True when held already.
    /// \param name ASCII letters, digits, '.', '-', '_'
    bool take(const std::string& name);
    bool isHeld() const { return m_handle != nullptr; }
    void release();

    /// Whether anybody has the claim now. Leaves nothing behind.
    static bool isTaken(const std::string& name);

    /// Whether a role can also be held by programs that do not know its claim: on Windows,
    /// where other makers' programs share the log.
    static bool othersMayIgnore();

private:
    class Handle;
    std::unique_ptr<Handle> m_handle;
};

} // namespace vlbase::platform

#pragma once

#include <string>

namespace vlbase::platform {

/// An open shared-memory object of this user. Its lock belongs to the open file, so the system
/// drops it when the process ends in whatever way, and two objects of one process conflict as
/// two processes do. A child process that was only forked shares the open file: there the object
/// takes no locks and removes no names, and what was claimed is closed, so that the claim ends
/// with the process that made it.
class SharedFile
{
public:
    enum class Opened { Done, Absent, Refused };
    enum class LockType { Shared, Exclusive };

    SharedFile() = default;
    ~SharedFile();
    SharedFile(SharedFile&& other) noexcept;
    SharedFile& operator=(SharedFile&& other) noexcept;

    /// Opens an object that is a plain file, belongs to this user and is closed to others.
    Opened open(const std::string& name, bool readOnly = false);

    /// Makes an object that did not exist.
    Opened create(const std::string& name);

    /// Makes the object and locks it exclusively, or does so with the one that is there.
    /// Absent: somebody else has it locked.
    Opened claim(const std::string& name);

    /// Takes, or changes to, a lock without waiting.
    bool tryLock(LockType type);

    /// Whether anybody else has any lock.
    bool isLockedByOthers() const;

    /// Whether the object still has a name, and so can be found by others.
    bool isNamed() const;

    /// Removes the name; the caller has the exclusive lock.
    void unlink();

    int descriptor() const { return m_descriptor; }

    /// Bytes of the object; -1 when the system does not tell.
    long long size() const;

private:
    void close();
    bool isOurs() const;
    bool isForked() const;

    int m_descriptor = -1;
    int m_process = 0; // that opened it
    bool m_isClaim = false;
    std::string m_path;
};

} // namespace vlbase::platform

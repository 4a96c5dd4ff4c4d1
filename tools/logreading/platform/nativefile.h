#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vlbase::tool::platform {

/// Tells two files apart, whatever names they have now.
struct FileIdentity
{
    std::uint64_t volume = 0;
    std::uint64_t number = 0;
    bool isKnown = false; ///< false: there is no such file

    friend bool operator==(const FileIdentity& a, const FileIdentity& b)
    {
        // Wine now and then does not tell the volume; then the number decides.
        const bool sameVolume = a.volume == b.volume || a.volume == 0 || b.volume == 0;
        return a.isKnown && b.isKnown && sameVolume && a.number == b.number;
    }
};

/// An open file that others may read, rename and remove meanwhile. Names are UTF-8. What fails
/// leaves the system's own error code where `qt_error_string` finds it.
class NativeFile
{
public:
    enum class Mode { Read, Append };

    NativeFile() = default;
    ~NativeFile();
    NativeFile(const NativeFile&) = delete;
    NativeFile& operator=(const NativeFile&) = delete;
    NativeFile(NativeFile&& other) noexcept;
    NativeFile& operator=(NativeFile&& other) noexcept;

    /// Append makes the file when there is none, and reads too.
    bool open(const std::string& name, Mode mode);
    /// A second handle of the same file, whatever its name is now.
    bool openAgain(const NativeFile& other);
    void close();
    bool isOpen() const { return m_handle != -1; }

    /// Bytes; -1 on failure.
    std::int64_t size() const;
    /// \return bytes read, 0 at the end, -1 on failure.
    std::int64_t readAt(std::int64_t offset, char* data, std::size_t size) const;
    /// Writes at the end.
    /// \return bytes taken, which may be fewer; -1 on failure.
    std::int64_t append(const char* data, std::size_t size);
    bool cutTo(std::int64_t size);
    FileIdentity identity() const;

    /// False for devices, pipes and folders.
    bool isRegular() const;
    /// Keeps out whoever asks for the same, until the file is closed. Does not wait.
    /// \return false when somebody has it; true also where the file system knows no locks.
    bool lock();

private:
    std::intptr_t m_handle = -1; // the descriptor or the HANDLE
};

FileIdentity identityOf(const std::string& name);
/// Replaces a file of the new name.
bool renameFile(const std::string& from, const std::string& to);
/// The name is free afterwards, also while somebody reads the file.
bool removeFile(const std::string& name);

} // namespace vlbase::tool::platform

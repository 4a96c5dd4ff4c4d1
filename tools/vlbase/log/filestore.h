#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace vlbase::tool::log {

/// A file that grows at its end.
class GrowingFile
{
public:
    virtual ~GrowingFile() = default;

    /// Bytes; -1 on failure.
    virtual std::int64_t size() const = 0;
    /// \return bytes read, 0 at the end, -1 on failure.
    virtual std::int64_t readAt(std::int64_t offset, char* data, std::size_t size) const = 0;
    /// \return bytes taken, which may be fewer than given; -1 on failure.
    virtual std::int64_t append(const char* data, std::size_t size) = 0;
    virtual bool cutTo(std::int64_t size) = 0;
    /// Whether this very file still has the name.
    virtual bool isCalled(const std::string& name) const = 0;
};

/// Where the owner's files are: the file system, or a test's imitation of a bad one. Names are
/// UTF-8.
class FileStore
{
public:
    virtual ~FileStore() = default;

    /// Opens for appending and makes the file when there is none; null on failure, for what is no
    /// regular file, and for a file that another owner has open.
    virtual std::unique_ptr<GrowingFile> open(const std::string& name) = 0;
    virtual bool exists(const std::string& name) = 0;
    /// Replaces a file of the new name.
    virtual bool rename(const std::string& from, const std::string& to) = 0;
    virtual bool remove(const std::string& name) = 0;
    /// Why the last call of this object or of a file of it failed.
    virtual QString errorText() = 0;
};

/// The system's own files.
std::unique_ptr<FileStore> makeNativeFileStore();

} // namespace vlbase::tool::log

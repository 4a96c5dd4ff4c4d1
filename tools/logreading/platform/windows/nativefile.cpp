#include "tools/logreading/platform/nativefile.h"

#include <algorithm>
#include <atomic>
#include <utility>
#include <windows.h>

namespace vlbase::tool::platform {
namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE handleOf(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

std::wstring wide(const std::string& text)
{
    const int bytes = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, result.data(), length);
    return result;
}

FileIdentity identityFrom(HANDLE file)
{
    BY_HANDLE_FILE_INFORMATION information = {};
    if (GetFileInformationByHandle(file, &information) == 0)
        return {};
    const std::uint64_t high = information.nFileIndexHigh;
    return {information.dwVolumeSerialNumber, (high << 32) | information.nFileIndexLow, true};
}

OVERLAPPED placeAt(std::int64_t offset)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

DWORD oneCall(std::size_t size)
{
    return static_cast<DWORD>(std::min<std::size_t>(size, 16u << 20));
}

/// A name that nobody else uses, beside the given one.
std::wstring nameAside(const std::wstring& name)
{
    static std::atomic<unsigned> counter{0};
    return name + L".removed-" + std::to_wstring(GetCurrentProcessId()) + L'-' +
           std::to_wstring(++counter);
}

} // namespace

NativeFile::~NativeFile()
{
    close();
}

NativeFile::NativeFile(NativeFile&& other) noexcept
    : m_handle(std::exchange(other.m_handle, -1))
{
}

NativeFile& NativeFile::operator=(NativeFile&& other) noexcept
{
    std::swap(m_handle, other.m_handle);
    return *this;
}

bool NativeFile::open(const std::string& name, Mode mode)
{
    close();
    const bool isRead = mode == Mode::Read;
    const HANDLE file = CreateFileW(
        wide(name).c_str(), isRead ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE, shareAll, nullptr,
        isRead ? OPEN_EXISTING : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_handle = reinterpret_cast<std::intptr_t>(file);
    return isOpen();
}

bool NativeFile::openAgain(const NativeFile& other)
{
    close();
    HANDLE file = INVALID_HANDLE_VALUE;
    const HANDLE self = GetCurrentProcess();
    if (DuplicateHandle(self, handleOf(other.m_handle), self, &file, 0, FALSE,
                        DUPLICATE_SAME_ACCESS) == 0)
        return false;
    m_handle = reinterpret_cast<std::intptr_t>(file);
    return true;
}

void NativeFile::close()
{
    if (isOpen())
        CloseHandle(handleOf(std::exchange(m_handle, -1)));
}

std::int64_t NativeFile::size() const
{
    LARGE_INTEGER size = {};
    return GetFileSizeEx(handleOf(m_handle), &size) != 0 ? size.QuadPart : -1;
}

std::int64_t NativeFile::readAt(std::int64_t offset, char* data, std::size_t size) const
{
    OVERLAPPED place = placeAt(offset);
    DWORD got = 0;
    if (ReadFile(handleOf(m_handle), data, oneCall(size), &got, &place) != 0)
        return got;
    return GetLastError() == ERROR_HANDLE_EOF ? 0 : -1;
}

std::int64_t NativeFile::append(const char* data, std::size_t size)
{
    // This place means the end of the file, wherever that is.
    OVERLAPPED place = {};
    place.Offset = 0xFFFFFFFF;
    place.OffsetHigh = 0xFFFFFFFF;
    DWORD put = 0;
    if (WriteFile(handleOf(m_handle), data, oneCall(size), &put, &place) == 0)
        return -1;
    return put;
}

bool NativeFile::cutTo(std::int64_t size)
{
    LARGE_INTEGER place = {};
    place.QuadPart = size;
    return SetFilePointerEx(handleOf(m_handle), place, nullptr, FILE_BEGIN) != 0 &&
           SetEndOfFile(handleOf(m_handle)) != 0;
}

FileIdentity NativeFile::identity() const
{
    return identityFrom(handleOf(m_handle));
}

bool NativeFile::isRegular() const
{
    return GetFileType(handleOf(m_handle)) == FILE_TYPE_DISK;
}

bool NativeFile::lock()
{
    // Far behind any text, because nobody else can read or write what is locked here.
    OVERLAPPED place = placeAt(std::int64_t{1} << 62);
    return LockFileEx(handleOf(m_handle), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1,
                      0, &place) != 0 ||
           (GetLastError() != ERROR_LOCK_VIOLATION && GetLastError() != ERROR_IO_PENDING);
}

FileIdentity identityOf(const std::string& name)
{
    const HANDLE file = CreateFileW(wide(name).c_str(), FILE_READ_ATTRIBUTES, shareAll, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return {};
    const FileIdentity identity = identityFrom(file);
    CloseHandle(file);
    return identity;
}

bool renameFile(const std::string& from, const std::string& to)
{
    // Replacing fails while somebody reads the old file; taking its name away does not.
    removeFile(to);
    return MoveFileExW(wide(from).c_str(), wide(to).c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

bool removeFile(const std::string& name)
{
    // A file that somebody reads keeps its name until it is closed, so it gets another one.
    const std::wstring aside = nameAside(wide(name));
    if (MoveFileExW(wide(name).c_str(), aside.c_str(), 0) == 0)
        return false;
    return DeleteFileW(aside.c_str()) != 0;
}

} // namespace vlbase::tool::platform

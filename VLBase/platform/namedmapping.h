#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace vlbase::platform {

/// Memory that the processes of one user share under a name.
///
/// It begins filled with zeros and ends with the last process that has it open, a killed one
/// too. Opening, creating and closing are serialised by the callers (`OpeningLock`).
class NamedMapping
{
public:
    enum class Opened {
        Done,
        Absent, ///< nobody has such memory open
        Refused ///< not ours to use, or the system said no; nothing was changed
    };
    enum class Access {
        ReadWrite,
        Glance ///< read only, and without prolonging the memory's life where that is possible
    };

    NamedMapping();
    ~NamedMapping();
    NamedMapping(NamedMapping&& other) noexcept;
    NamedMapping& operator=(NamedMapping&& other) noexcept;

    /// Maps all of the memory called \a name (ASCII letters, digits, '.', '-', '_'), when this
    /// object has nothing open.
    Opened open(const std::string& name, Access access = Access::ReadWrite);

    /// Makes and maps memory of \a size bytes, all of it backed; false when the name is in use
    /// or there is no room, and `lastError` tells why.
    bool create(const std::string& name, std::size_t size);

    void close();

    bool isOpen() const { return m_handle != nullptr; }
    std::byte* data() const { return m_data; }

    /// Bytes that may be touched: at least those it was created with.
    std::size_t size() const { return m_size; }

private:
    class Handle;

    std::unique_ptr<Handle> m_handle;
    std::byte* m_data = nullptr;
    std::size_t m_size = 0;
};

} // namespace vlbase::platform

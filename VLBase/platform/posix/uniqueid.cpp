#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/uniqueid.h>

#include <cerrno>
#include <sys/random.h>

namespace vlbase::platform {

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

} // namespace vlbase::platform

#include "networkadapters.h"

namespace vlbase::platform {

std::string hardwareAddressText(const unsigned char* bytes, std::size_t size)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        if (i > 0)
            text += '-';
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0xF];
    }
    return text;
}

} // namespace vlbase::platform

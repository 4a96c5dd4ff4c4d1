#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace vlbase::platform {

struct UniqueId
{
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::array<std::uint8_t, 8> data4;
};

/// A new globally unique identifier (version 4, random); none on failure.
std::optional<UniqueId> createUniqueId();

} // namespace vlbase::platform

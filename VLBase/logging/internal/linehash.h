#pragma once

#include <cstdint>
#include <string_view>

namespace vlbase::logging {

/// Tells lines apart; not made to withstand somebody who looks for equal hashes.
std::uint64_t lineHash(std::string_view line);

} // namespace vlbase::logging

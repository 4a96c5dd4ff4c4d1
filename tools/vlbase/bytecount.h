#pragma once

#include <QStringView>

#include <cstdint>
#include <optional>

namespace vlbase::tool {

/// Reads a number of bytes: digits, then nothing, "B", or one of K, M, G, alone or as KB, KiB
/// (1K is 1024 bytes), in any case of letters. Blanks around it do not matter.
/// \return nothing when the text is something else or the number has more than 62 bits.
std::optional<std::int64_t> parseByteCount(QStringView text);

/// The number as people write it: "512 bytes", "64 KiB", "1.5 MiB".
QString byteCountText(std::int64_t bytes);

} // namespace vlbase::tool

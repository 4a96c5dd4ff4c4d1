#pragma once

#include "filestore.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vlbase::tool::log {

/// Where the last line that has a line end ends; 0 in a file without one.
std::int64_t endOfLastWholeLine(const GrowingFile& file);

/// Whether an owner wrote the file, so that the next one may go on behind it: its first line or its
/// last whole one begins as a line of a log does, and so does what may follow without an end.
bool isLogToGoOn(const GrowingFile& file);

/// How far an earlier owner had come when it wrote its file.
struct FileTail
{
    enum class Kind {
        Unknown,   ///< no line of a log in it
        LogBegins, ///< a log began, and no line of it came
        Line,      ///< `index` is the last number that is written or counted as lost
    };

    Kind kind = Kind::Unknown;
    int index = 0;
    std::string line; ///< the last line, when `index` is that of a line and not of a notice
    std::vector<std::string> after; ///< lines without a number that follow, the oldest first
};

/// Looks for the last line that says how far its owner had come, backwards through the file.
FileTail readFileTail(const GrowingFile& file);

/// The same for a file and, when it says nothing, for F.1, to which it was just rotated.
FileTail readFileTail(FileStore& store, const std::string& name);

/// How many bytes of `pending` (lines that each end in a zero byte, as an owner that was killed
/// left them) are in the file already, as far as lines without a number are among them. Those
/// with one are told by their number alone.
std::size_t bytesInFile(const FileTail& tail, std::string_view pending);

} // namespace vlbase::tool::log

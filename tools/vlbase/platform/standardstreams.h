#pragma once

#include <cstddef>

namespace vlbase::tool::platform {

enum class Stream { Input, Output, Error };

enum class WriteResult {
    Done,
    Closed, ///< Nobody reads any more, or the program was asked to stop meanwhile.
    Failed,
};

/// Once, before anything else of the program: text in and out is UTF-8, and a closed pipe or a
/// file at its size limit is an error of the write instead of a deadly signal.
void prepareStandardStreams();

bool isTerminal(Stream stream);

/// Lets escape sequences work on the output's terminal.
/// \return false when they cannot.
bool enableEscapeSequences();

/// Waits for input and takes what is there.
/// \return bytes read; 0 at the end; -1 on failure.
std::ptrdiff_t readInput(char* data, std::size_t size);

/// Writes all of it, however often the system takes less.
WriteResult writeAll(Stream stream, const char* data, std::size_t size);

} // namespace vlbase::tool::platform

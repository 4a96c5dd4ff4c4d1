#include "tools/vlbase/platform/standardstreams.h"

#include <algorithm>
#include <windows.h>

namespace vlbase::tool::platform {
namespace {

HANDLE handleOf(Stream stream)
{
    switch (stream) {
    case Stream::Input:
        return GetStdHandle(STD_INPUT_HANDLE);
    case Stream::Output:
        return GetStdHandle(STD_OUTPUT_HANDLE);
    case Stream::Error:
        return GetStdHandle(STD_ERROR_HANDLE);
    }
    return INVALID_HANDLE_VALUE;
}

} // namespace

void prepareStandardStreams()
{
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCP(CP_UTF8);
}

bool isTerminal(Stream stream)
{
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != 0;
}

bool enableEscapeSequences()
{
    const HANDLE output = handleOf(Stream::Output);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) != 0 &&
           SetConsoleMode(output,
                          mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::ptrdiff_t readInput(char* data, std::size_t size)
{
    DWORD got = 0;
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(size, 1u << 20));
    if (ReadFile(handleOf(Stream::Input), data, wanted, &got, nullptr) != 0)
        return static_cast<std::ptrdiff_t>(got);
    const DWORD error = GetLastError();
    return error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF ? 0 : -1;
}

WriteResult writeAll(Stream stream, const char* data, std::size_t size)
{
    while (size > 0) {
        // A console takes no more than about 64 KiB at once.
        const auto wanted = static_cast<DWORD>(std::min<std::size_t>(size, 32u << 10));
        DWORD put = 0;
        if (WriteFile(handleOf(stream), data, wanted, &put, nullptr) == 0) {
            const DWORD error = GetLastError();
            return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA ? WriteResult::Closed
                                                                        : WriteResult::Failed;
        }
        data += put;
        size -= put;
    }
    return WriteResult::Done;
}

} // namespace vlbase::tool::platform

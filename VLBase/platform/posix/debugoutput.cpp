#include <VLBase/platform/debugoutput.h>

#include <cstdio>

namespace vlbase::platform {

namespace {

void appendUtf8(std::string& text, char32_t c)
{
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        c = 0xFFFD;
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | c >> 6);
        tail(0);
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0 | c >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | c >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

void writeToDebugger(const std::wstring& text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (const wchar_t c : text)
        appendUtf8(bytes, static_cast<char32_t>(c));
    std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

} // namespace vlbase::platform

#include "linetext.h"

#include <cstdint>
#include <cstring>

namespace vlbase::logging {
namespace {

constexpr std::uint64_t ofEachByte(unsigned char value)
{
    return 0x0101010101010101u * value;
}

/// The high bit of each byte that is not printable ASCII and no tab. No byte carries into its
/// neighbour, so each bit is exact.
constexpr std::uint64_t notPlain(std::uint64_t bytes)
{
    constexpr std::uint64_t low = ofEachByte(0x7F);
    const auto isZero = [](std::uint64_t x) { return ~(((x & low) + low) | x); };
    const std::uint64_t isControl = ~((bytes & low) + ofEachByte(0x60));
    const std::uint64_t isTab = isZero(bytes ^ ofEachByte(0x09));
    const std::uint64_t isDelete = isZero(bytes ^ ofEachByte(0x7F));
    return (bytes | (isControl & ~isTab) | isDelete) & ofEachByte(0x80);
}

struct Decoded
{
    char32_t character; ///< U+FFFD for what is none
    std::size_t length; ///< bytes used, at least 1
};

constexpr char32_t replacement = 0xFFFD;

/// Decodes the character at the start of `text`, which is not empty. Of what is no UTF-8, the
/// longest beginning of a character is taken at once, as the Unicode standard advises.
Decoded decode(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return {first, 1};
    if (first < 0xC2 || first > 0xF4)
        return {replacement, 1};
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    // The second byte's range keeps out long forms, surrogates and what lies past U+10FFFF.
    const unsigned char least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned char most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    auto character = static_cast<char32_t>(first & (0xFF >> (length + 1)));
    for (std::size_t i = 1; i < length; ++i) {
        const bool isThere = i < text.size() && byte(i) >= (i == 1 ? least : 0x80) &&
                             byte(i) <= (i == 1 ? most : 0xBF);
        if (!isThere)
            return {replacement, i};
        character = (character << 6) | (byte(i) & 0x3F);
    }
    return {character, length};
}

void appendUtf8(char32_t character, std::string& out)
{
    // Only pictures and the replacement are made here: all have three bytes.
    out += static_cast<char>(0xE0 | (character >> 12));
    out += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
}

bool turnsOrBreaks(char32_t character)
{
    return (character >= 0x202A && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069) || character == 0x2028 ||
           character == 0x2029;
}

/// What to write instead of a character; 0 when it stays.
char32_t substitute(char32_t character, Cleaning cleaning)
{
    if (character == U'\t')
        return 0;
    if (character < 0x20)
        return 0x2400 + character;
    if (character == 0x7F)
        return 0x2421;
    if (character >= 0x80 && character < 0xA0)
        return replacement;
    if (cleaning == Cleaning::ForTerminal && turnsOrBreaks(character))
        return replacement;
    return character == replacement ? replacement : 0;
}

} // namespace

bool isPlain(std::string_view text)
{
    const char* at = text.data();
    std::size_t left = text.size();
    for (; left >= sizeof(std::uint64_t); left -= sizeof(std::uint64_t)) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, at, sizeof bytes);
        if (notPlain(bytes) != 0)
            return false;
        at += sizeof bytes;
    }
    std::uint64_t rest = ofEachByte(' ');
    std::memcpy(&rest, at, left);
    return notPlain(rest) == 0;
}

void appendClean(std::string_view text, Cleaning cleaning, std::string& out)
{
    if (isPlain(text)) {
        out += text;
        return;
    }
    while (!text.empty()) {
        const Decoded next = decode(text);
        if (const char32_t instead = substitute(next.character, cleaning))
            appendUtf8(instead, out);
        else
            out += text.substr(0, next.length);
        text.remove_prefix(next.length);
    }
}

std::string_view cutToWholeCharacters(std::string_view text, std::size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    const auto isContinued = [&](std::size_t i) {
        return (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    };
    std::size_t end = bytes;
    while (end > 0 && bytes - end < 4 && isContinued(end))
        --end;
    return text.substr(0, isContinued(end) ? bytes : end);
}

} // namespace vlbase::logging

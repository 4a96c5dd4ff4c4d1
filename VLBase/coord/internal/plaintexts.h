#pragma once

#include <VLBase/coord/internal/points.h>
#include <VLBase/coord/internal/textbuffer.h>

#include <cstddef>
#include <cstdint>
#include <optional>

/// \file
/// Writers and readers of the plain texts, one pair for each family of formats. Positions that
/// writers get are valid; a writer may refuse one with a text that begins with "#". Readers get
/// upper-case ASCII of the right length and check everything else.

namespace vlbase::coord {

/// Takes a plain text apart from its front.
class PlainReader
{
public:
    explicit PlainReader(const TextBuffer& text)
        : m_text(text)
    {
    }

    /// The next character, 0 past the end.
    char character() { return m_place < m_text.size() ? m_text[m_place++] : '\0'; }

    /// The number that the next characters are; nothing when one is no digit.
    std::optional<std::uint64_t> number(std::size_t digits)
    {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            const char digit = character();
            if (digit < '0' || digit > '9')
                return std::nullopt;
            value = value * 10 + static_cast<std::uint64_t>(digit - '0');
        }
        return value;
    }

private:
    const TextBuffer& m_text;
    std::size_t m_place = 0;
};

/// How an angle is cut into numbers after its whole degrees.
enum class AngleForm {
    Millionths, ///< of a degree
    Hundredths, ///< minutes, seconds and hundredths of them
    Seconds     ///< minutes and seconds
};

void writeAngles(AngleForm form, GeoPoint position, TextBuffer& text);
std::optional<GeoPoint> readAngles(AngleForm form, const TextBuffer& text);

void writeUtm(GeoPoint position, TextBuffer& text);
std::optional<GeoPoint> readUtm(const TextBuffer& text);

void writeMgrs(GeoPoint position, TextBuffer& text);
std::optional<GeoPoint> readMgrs(const TextBuffer& text);

void writeRt90(GeoPoint position, TextBuffer& text);
std::optional<GeoPoint> readRt90(const TextBuffer& text);

void writeMaidenhead(GeoPoint position, TextBuffer& text);
std::optional<GeoPoint> readMaidenhead(const TextBuffer& text);

} // namespace vlbase::coord

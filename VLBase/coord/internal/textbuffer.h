#pragma once

#include <QLatin1String>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace vlbase::coord {

/// A short Latin-1 text on the stack, for texts that are built character by character.
class TextBuffer
{
public:
    void put(char character) { m_characters[m_size++] = character; }
    void put(const char* text)
    {
        while (*text)
            put(*text++);
    }

    /// The last `width` digits of a number, with leading zeros.
    void putDigits(std::uint64_t value, std::size_t width)
    {
        for (std::size_t i = width; i > 0; --i) {
            m_characters[m_size + i - 1] = static_cast<char>('0' + value % 10);
            value /= 10;
        }
        m_size += width;
    }

    void clear() { m_size = 0; }
    std::size_t size() const { return m_size; }
    char operator[](std::size_t place) const { return m_characters[place]; }
    bool isRefusal() const { return m_size > 0 && m_characters[0] == '#'; }

    QLatin1String view() const
    {
        return QLatin1String(m_characters, static_cast<qsizetype>(m_size));
    }
    QString toString() const { return QString(view()); }

    bool operator==(const TextBuffer& other) const { return view() == other.view(); }
    bool operator!=(const TextBuffer& other) const { return !(*this == other); }

private:
    // Room for the longest refusal and the longest text, and some.
    char m_characters[48];
    std::size_t m_size = 0;
};

} // namespace vlbase::coord

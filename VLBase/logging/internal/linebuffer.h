#pragma once

#include <QByteArrayView>
#include <QStringView>

#include <cstddef>
#include <string_view>

namespace vlbase::logging {

/// A line under construction, in memory of the caller. What is known early, from the station
/// on, stands behind a gap; the number and the time go into the gap last, right before it.
class LineBuffer
{
public:
    /// Bytes that a line needs whose later fields have \a utf8Bytes and \a characters.
    static std::size_t sizeFor(qsizetype utf8Bytes, qsizetype characters);

    /// \param memory of `sizeFor` all that is appended
    explicit LineBuffer(char* memory)
        : m_begin(memory + gap)
        , m_end(m_begin)
    {
    }

    void append(QByteArrayView utf8);
    void append(QStringView text);
    void append(char character) { *m_end++ = character; }

    /// Ends the line at its first zero character.
    void cutAtZero();

    /// The line with its first fields in front of it.
    std::string_view complete(long number, std::string_view time);

private:
    static constexpr std::size_t gap = 128;

    char* m_begin;
    char* m_end;
};

} // namespace vlbase::logging

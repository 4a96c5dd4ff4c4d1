#include "linebuffer.h"

#include <QString>
#include <QStringEncoder>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace vlbase::logging {

namespace {

constexpr std::size_t bytesPerCharacter = 3; // of UTF-8, for one of UTF-16

}

std::size_t LineBuffer::sizeFor(qsizetype utf8Bytes, qsizetype characters)
{
    return gap + static_cast<std::size_t>(utf8Bytes) +
           bytesPerCharacter * static_cast<std::size_t>(characters);
}

void LineBuffer::append(QByteArrayView utf8)
{
    m_end = std::copy(utf8.begin(), utf8.end(), m_end);
}

void LineBuffer::append(QStringView text)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    char* const end = encoder.appendToBuffer(m_end, text);
    if (encoder.hasError())
        append(QByteArrayView(text.toUtf8())); // half a surrogate pair becomes "?"
    else
        m_end = end;
}

void LineBuffer::cutAtZero()
{
    const void* const zero = std::memchr(m_begin, 0, static_cast<std::size_t>(m_end - m_begin));
    if (zero)
        m_end = m_begin + (static_cast<const char*>(zero) - m_begin);
}

std::string_view LineBuffer::complete(long number, std::string_view time)
{
    char digits[24];
    const char* const digitsEnd = std::to_chars(digits, digits + sizeof digits, number).ptr;
    char* const timeBegin = m_begin - time.size();
    std::copy(time.begin(), time.end(), timeBegin);
    char* const begin = timeBegin - 1 - (digitsEnd - digits);
    *std::copy(static_cast<const char*>(digits), digitsEnd, begin) = '\t';
    return {begin, static_cast<std::size_t>(m_end - begin)};
}

} // namespace vlbase::logging

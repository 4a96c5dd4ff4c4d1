#include "textfinder.h"

namespace vlbase::logreading {
namespace {

constexpr char caseBit = 0x20;
constexpr std::size_t stride = 64;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char merged(char a, char b)
{
    return static_cast<char>(a | b);
}

struct Pair
{
    char first, firstMask, last, lastMask;
};

/// Whether the two characters stand at their distance somewhere in the stride; without a branch,
/// so that the compiler makes vector instructions of it.
bool hasPair(const char* first, const char* last, const Pair& wanted)
{
    unsigned char found = 0;
    for (std::size_t i = 0; i < stride; ++i) {
        const bool isFirst = merged(first[i], wanted.firstMask) == wanted.first;
        const bool isLast = merged(last[i], wanted.lastMask) == wanted.last;
        found = static_cast<unsigned char>(found | (isFirst & isLast));
    }
    return found != 0;
}

} // namespace

TextFinder::TextFinder(std::string_view text, bool ignoreCase)
    : m_text(text)
    , m_mask(text.size(), '\0')
{
    for (std::size_t i = 0; ignoreCase && i < m_text.size(); ++i) {
        if (isLetter(m_text[i])) {
            m_mask[i] = caseBit;
            m_text[i] = merged(m_text[i], caseBit);
        }
    }
}

bool TextFinder::isAt(const char* place) const
{
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        if (merged(place[i], m_mask[i]) != m_text[i])
            return false;
    }
    return true;
}

std::size_t TextFinder::find(std::string_view in, std::size_t from) const
{
    if (from > in.size() || in.size() - from < m_text.size())
        return npos;
    if (m_text.empty())
        return from;
    const std::size_t gap = m_text.size() - 1;
    const std::size_t end = in.size() - gap; // behind the last place where it may begin
    const Pair pair{m_text.front(), m_mask.front(), m_text.back(), m_mask.back()};
    const char* const data = in.data();
    while (from < end) {
        const std::size_t size = end - from < stride ? end - from : stride;
        if (size == stride && !hasPair(data + from, data + from + gap, pair)) {
            from += stride;
            continue;
        }
        for (std::size_t i = 0; i < size; ++i, ++from) {
            if (merged(data[from], pair.firstMask) == pair.first && isAt(data + from))
                return from;
        }
    }
    return npos;
}

} // namespace vlbase::logreading

#include "linesplitter.h"

#include <VLBase/logging/linetext.h>

#include <algorithm>
#include <utility>

namespace vlbase::tool::log {
namespace {

// Kept behind the limit, to see whether a character begins there.
constexpr std::size_t longestCharacter = 4;

} // namespace

LineSplitter::LineSplitter(std::size_t longestLine, Take take)
    : m_longest(longestLine)
    , m_take(std::move(take))
{
}

void LineSplitter::feed(std::string_view data)
{
    while (!data.empty()) {
        const std::size_t end = data.find('\n');
        if (end == std::string_view::npos) {
            grow(data);
            return;
        }
        grow(data.substr(0, end));
        // A carriage return that is still held back was part of the line end.
        m_isCarriageReturnLast = false;
        give();
        data.remove_prefix(end + 1);
    }
}

void LineSplitter::finish()
{
    m_isCarriageReturnLast = false;
    if (!m_line.empty() || m_cut > 0)
        give();
}

void LineSplitter::grow(std::string_view data)
{
    if (data.empty())
        return;
    const auto add = [this](std::string_view text) {
        const std::size_t room = m_longest + longestCharacter - m_line.size();
        m_line += text.substr(0, room);
        m_cut += text.size() - std::min(text.size(), room);
    };
    if (std::exchange(m_isCarriageReturnLast, data.back() == '\r'))
        add("\r");
    add(m_isCarriageReturnLast ? data.substr(0, data.size() - 1) : data);
}

void LineSplitter::give()
{
    const std::string_view whole = logging::cutToWholeCharacters(m_line, m_longest);
    m_take(whole, m_cut + m_line.size() - whole.size());
    m_line.clear();
    m_cut = 0;
}

} // namespace vlbase::tool::log

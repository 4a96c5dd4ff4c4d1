#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace vlbase::tool::log {

/// Cuts a stream into lines as it comes: at line feeds. A carriage return before one or at the
/// end of the stream is left out, and the last line needs no end.
///
/// A line longer than the limit is cut there; what follows up to its end is counted and thrown
/// away, so that no stream makes the program grow.
class LineSplitter
{
public:
    /// `line` is valid during the call; `cutBytes` of its end are missing.
    using Take = std::function<void(std::string_view line, std::size_t cutBytes)>;

    LineSplitter(std::size_t longestLine, Take take);

    void feed(std::string_view data);
    /// The stream has ended.
    void finish();

private:
    void grow(std::string_view data);
    void give();

    std::size_t m_longest;
    Take m_take;
    std::string m_line;
    std::size_t m_cut = 0;               // bytes of the line that were thrown away
    bool m_isCarriageReturnLast = false; // held back: it belongs to a line end or to the line
};

} // namespace vlbase::tool::log

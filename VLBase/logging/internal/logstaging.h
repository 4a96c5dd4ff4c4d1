#pragma once

#include <VLBase/logging/internal/logimage.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vlbase::logging {

/// Where drained lines wait until they are in the file: a ring in memory that may be shared, so
/// that they survive the process that drained them.
///
/// Ends are counted in bytes since ever; a byte's place is its count modulo the ring's size. A
/// drain is never split: when it does not fit before the ring's end, the rest of the round is
/// skipped. One thread takes, another may read and mark. A ring of no bytes takes nothing.
class LogStaging
{
public:
    /// What two owners, one after the other, need to know.
    struct Control
    {
        std::atomic<std::uint64_t> taken{0};   ///< end of what was drained
        std::atomic<std::uint64_t> skipAt{0};  ///< where the lines stop before the next round
        std::atomic<std::uint64_t> moveEnd{0}; ///< `taken` after the move under way; 0: none
        std::atomic<std::uint64_t> moveBytes{0};
        alignas(64) std::atomic<std::uint64_t> written{0}; ///< end of what is in the file
    };

    LogStaging() = default;
    LogStaging(Control* control, char* ring, std::size_t size);

    std::size_t size() const { return m_size; }

    /// Moves all lines of half 1 here. False when they do not fit, and nothing has changed then.
    /// At no moment does anybody who is killed leave them in neither or in both places:
    /// `finishMove` puts it right.
    bool take(LogImage& image);

    /// Completes a move whose owner died in it. For the holder of the log's mutex.
    void finishMove(LogImage& image);

    /// The oldest lines, in one piece. Empty when there are none.
    std::string_view pending() const;
    void markWritten(std::size_t bytes);

    /// Bytes of all lines here.
    std::size_t bytes() const;

    /// Starts anew when the counts cannot be true.
    void discardIfDamaged();

private:
    std::uint64_t nextRound(std::uint64_t end) const;
    bool skips(std::uint64_t at, std::uint64_t begin, std::uint64_t end) const;

    Control* m_control = nullptr;
    char* m_ring = nullptr;
    std::size_t m_size = 0;
};

} // namespace vlbase::logging

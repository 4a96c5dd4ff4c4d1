#pragma once

#include <VLBase/logging/internal/logimage.h>
#include <VLBase/logging/internal/logstaging.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vlbase::logging {

/// Memory of our own beside the shared log, which programs of other makers neither know nor
/// need: the seals of the lines, and the staging ring of the owner. Without it the log works
/// by its contract, only lost and torn lines are then recognised by their numbers alone.
class LogReserve
{
public:
    /// A line's position among all lines ever, and 32 bits of its hash.
    struct Seal
    {
        std::uint64_t position;
        std::uint32_t hash;
    };

    static std::size_t sizeFor(std::size_t stagingBytes);

    /// Whether \a size bytes at \a base are a reserve.
    static bool isReserve(const void* base, std::size_t size);

    /// Size of its staging ring, for `isReserve` memory.
    static std::size_t stagingBytes(const void* base);

    /// Uses a reserve of \a size bytes, `isReserve`, beside \a image.
    LogReserve(void* base, std::size_t size, LogImage image);

    /// Makes a reserve in memory of `sizeFor(stagingBytes)` bytes, whatever was there before.
    static void format(void* base, std::size_t stagingBytes, const LogImage& image);

    /// Position of a number that was just taken from the image; none for a counter that no log
    /// of ours makes.
    std::optional<std::uint64_t> takePosition(std::int32_t counter);

    /// The image's counter was set to \a counter when \a reached positions were given out:
    /// they go on behind all that there were.
    void jump(std::uint64_t reached, std::int32_t counter);

    /// How many positions from \a begin to \a end the last jump left out: no line ever had them.
    std::uint64_t leftOut(std::uint64_t begin, std::uint64_t end) const;

    /// Position of the next number.
    std::uint64_t reached() const;

    /// Asks the processor for the place of the next number's seal.
    void prefetchSeal() const;

    void seal(std::uint64_t position, std::string_view line);
    std::optional<Seal> sealAt(std::uint64_t slot) const;
    static std::uint32_t sealHash(std::uint64_t lineHash);

    /// Remembers that a line with this hash was injected as it is, and forgets it once.
    void noteInjected(std::uint64_t lineHash);
    bool takeInjected(std::uint64_t lineHash) const;
    bool isInjected(std::uint64_t lineHash) const;

    /// Whether a holder of the mutex was ever taken for dead because it hung. It may wake up at
    /// any time and spoil bytes.
    bool hasHung() const;
    void noteHang();

    /// Whether the owner that the header counts holds the owner's claim.
    bool ownerHasClaim() const;
    void setOwnerHasClaim(bool has);

    /// Size 0 when no room was made for it.
    LogStaging& staging() { return m_staging; }
    const LogStaging& staging() const { return m_staging; }

private:
    struct Header;

    LogImage m_image;
    Header* m_header;
    std::atomic<std::uint64_t>* m_seals;
    std::atomic<std::uint64_t>* m_injected;
    LogStaging m_staging;
};

} // namespace vlbase::logging

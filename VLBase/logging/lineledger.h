#pragma once

#include <VLBase/vlbase_export.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace vlbase::logging {

class LogReserve;

/// Judges each drained line, and counts exactly the lines that never came.
///
/// Every number that a writer took is either a line accepted here or a line counted as lost
/// here, never both, also after kills, evictions and emptied halves. Lines are judged in the
/// order of the drain.
///
/// Line numbers alone tell this while fewer than 800,000 lines in a row are lost. With the reserve
/// beside the log each line of this library's writers also has a seal, which tells its full
/// position among all lines ever written and whether its bytes are whole.
class VLBASE_EXPORT LineLedger
{
public:
    enum class Verdict {
        Accept,  ///< belongs into the file
        Torn,    ///< not the bytes that were sent; leave it out
        Repeated ///< already accepted or already counted as lost; leave it out
    };

    struct Judgement
    {
        Verdict verdict = Verdict::Accept;
        std::uint64_t lostBefore = 0; ///< lines lost between the previous line and this one
    };

    /// Knows the numbers alone; `LogOwner::makeLedger` gives one that knows the seals too.
    LineLedger();

    /// \param reserve outlives the ledger; null when there is none
    explicit LineLedger(const LogReserve* reserve);

    /// The next line is the first of a log that was just created.
    void startAtBeginning();

    /// Goes on after \a lastLine, the last line with a number that the file already has (whole,
    /// without its line end); nothing when it has no number. Without any start the first line
    /// that comes is taken as it is.
    void resumeAfter(std::string_view lastLine);

    /// \param line without its zero byte. A line without a number is accepted and counts for
    ///     nothing, one that was injected as it is likewise. Once a holder of the mutex has hung,
    ///     a line without a number is accepted only from programs of this library.
    Judgement judge(std::string_view line);

    /// Settles the account when nothing is under way: the log's half and the staging are empty.
    /// \param nextIndex number of the next line, read under the lock
    /// \return how many lines were lost since the last one judged
    std::uint64_t lostUpTo(long nextIndex);

private:
    std::optional<Judgement> judgeSealed(std::string_view line, std::int32_t number);
    Judgement judgeByNumber(std::int32_t number);
    Judgement acceptAt(std::uint64_t position);
    std::uint64_t lostBefore(std::uint64_t end) const;
    std::optional<std::uint64_t> sealedPosition(std::uint64_t slot, std::uint64_t lineHash) const;
    bool isFragment(std::string_view line) const;
    bool awaitsOther(std::uint64_t slot) const;
    std::optional<std::uint64_t> lastPositionOf(std::uint64_t slot) const;

    const LogReserve* m_reserve;
    std::optional<std::uint64_t> m_next; // position of the first line not yet accounted for
};

} // namespace vlbase::logging

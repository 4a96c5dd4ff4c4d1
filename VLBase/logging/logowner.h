#pragma once

#include <VLBase/logging/lineledger.h>
#include <VLBase/logging/mmshared.h>
#include <VLBase/vlbase_export.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace vlbase::logging {

/// The owner's side of the shared log: moves lines out of the log, so that none is ever only in
/// the owner's own memory.
///
///     LogOwner owner(1024 * 1024);
///     LineLedger ledger = owner.makeLedger();
///     while (isWanted) {
///         const auto drained = owner.drain();
///         for (auto lines = owner.pending(); !lines.empty(); lines = owner.pending()) {
///             const std::size_t size = lines.size();
///             while (!lines.empty())
///                 write(takeLine(lines), ledger); // what LineLedger::judge accepts
///             owner.markWritten(size);
///         }
///         std::this_thread::sleep_for(drained.rest);
///     }
///
/// `drain` copies the owner's half into a staging area that outlives a killed owner; the
/// program writes `pending` to its file and then says so with `markWritten`. The lock is held for
/// memory copies only, so a slow disk fills the staging area and stops nobody. A new owner finds
/// in `pending` what its killed predecessor did not mark, some of which may be in the file
/// already: `LineLedger::resumeAfter` tells which.
///
/// One thread may drain while another writes and marks. All else is for one thread at a time.
class VLBASE_EXPORT LogOwner : public CMMShared
{
public:
    using OpenResult = logging::OpenResult;

    static constexpr int defaultReserveBytes = 32 * 1024 * 1024;

    /// Opens the log. \a bufferSize is for a new one, in bytes of each half; \a reserveBytes is
    /// the staging area's size, at least twice the half's; a smaller one is made where the shared
    /// memory has no room.
    explicit LogOwner(int bufferSize, int reserveBytes = defaultReserveBytes);
    ~LogOwner() override;
    LogOwner(const LogOwner&) = delete;
    LogOwner& operator=(const LogOwner&) = delete;

    /// Attaches when the object is not open yet; the result is also `openResult`.
    OpenResult open();
    OpenResult openResult() const;

    /// Bytes of each half; 0 when closed.
    int bufferSize() const;

    using CMMShared::GetAcceptDataBlocks;
    using CMMShared::GetIndex;
    using CMMShared::SetAcceptDataBlocks;
    using CMMShared::SetFileName;
    using CMMShared::SetIndex;

    struct Drained
    {
        int bytes = 0;            ///< moved into the staging area
        int fillBefore = 0;       ///< of the owner's half, in bytes
        bool timedOut = false;    ///< the lock's holder hung: both halves were emptied
        bool stagingFull = false; ///< the lines were left where they are
        bool trimmed = false;     ///< the viewers' half lost its older lines
        /// How long the owner may rest until the next drain; 0: that one is due at once.
        std::chrono::microseconds rest{0};
    };

    /// Moves all lines of the owner's half into the staging area, in one piece; nothing when
    /// they do not fit. Also cuts the viewers' half back when it is about to run over, because
    /// writers would otherwise move all of it for each line.
    Drained drain();

    /// The oldest drained lines that are not marked yet, each ended by a zero byte. Not always
    /// all of them: after they are marked, more may follow. Valid until marked.
    std::string_view pending() const;

    /// The first \a bytes of `pending` are in the file: whole lines.
    void markWritten(std::size_t bytes);

    /// All that `pending` will yet give, and the room there is.
    std::size_t stagedBytes() const;
    std::size_t stagingCapacity() const;

    /// Whether drained lines outlive a killed owner. False where the shared memory had no room
    /// for a staging area of twice the half: they then wait in this process's own memory.
    bool isStagingShared() const;

    /// A ledger that knows this log's seals; not to be used after the owner is gone.
    LineLedger makeLedger() const;

    /// The next line's number when no line is under way between the writers and the file, to
    /// be given to `LineLedger::lostUpTo`.
    std::optional<long> nextIndexIfIdle();

private:
    struct State;

    void useStaging();
    Drained drainOnce();
    bool trimViewersHalf(int inflow);

    std::unique_ptr<State> m_state; // null while it has never been open
};

} // namespace vlbase::logging

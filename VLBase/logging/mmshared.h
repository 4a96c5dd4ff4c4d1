#pragma once

#include <VLBase/logging/openresult.h>
#include <VLBase/vlbase_export.h>

#include <cstdint>
#include <memory>

namespace vlbase::logging {
class LogAttachment;
} // namespace vlbase::logging

/// One process's handle on the log buffer that all processes of a user share.
///
/// The buffer is a named mapping with a header and two halves. Every line goes into both: half 0
/// is for live viewers, half 1 for the owner, the one process that writes the log file. A half
/// holds whole lines, each ended by a zero byte; when it is full, its oldest lines make room.
///
/// There are three roles. The owner (0) creates the buffer, writers (1) and live readers (2)
/// join it and stay closed while there is none; they may call `Open` again at any time.
/// Copies of an object share its attachment and count as one user; the user is gone with the
/// last copy. A process maps the buffer once, however many objects it makes.
///
/// The header's fields are guarded by a named mutex, `Lock`. It is recursive and is waited for
/// at most 2000 ms: then its holder counts as dead, both halves are emptied and the caller
/// goes on without it. From then on the process only tries the mutex, without a wait, and goes on
/// without it, until it was free once.
///
/// Nothing here throws. One object is used by one thread at a time; different objects need no
/// care.
class VLBASE_EXPORT CMMShared
{
public:
    virtual ~CMMShared();
    CMMShared(const CMMShared& other);
    CMMShared& operator=(const CMMShared& other);

    /// Attaches to the buffer; the owner creates it when there is none.
    /// \return whether the object is open now. False also when it was open before, when the
    ///     buffer is damaged, and for an owner while another one is alive.
    bool Open();

    bool IsOpen() const;

    /// Whether somebody is there to write the log file.
    bool IsWriterAvailable();

    /// Number of attached owners, writers and readers of all processes; -1 when closed.
    int GetUserCount();

    /// The log file's name, zero-terminated, inside the buffer; null when closed.
    char* GetFileName();

    /// Appends a zero-terminated line to both halves. Dropped when
    /// closed, when there is no owner, and when the line cannot fit into an empty half.
    /// The caller holds a `Lock`.
    void Add(const char* line);

    /// Takes the buffer's mutex; see the class about the 2000 ms. Nothing when closed.
    void LockData();

    /// Releases the mutex once; harmless when this thread does not hold it.
    void UnLockData();

protected:
    /// Stores both values and calls `Open`.
    /// \param role 0, 1 or 2
    /// \param bufferSize bytes of each half, for the owner; others take it from the buffer
    CMMShared(int role, int bufferSize);

    /// As above, for an owner that also wants \a reserveBytes of memory that outlives it, in
    /// which it puts lines aside until they are in its file.
    CMMShared(int role, int bufferSize, int reserveBytes);

    /// Publishes the log file's name: at most 511 bytes. A longer one clears the field and
    /// gives false, as does a closed object.
    bool SetFileName(const char* name);

    /// Whether the owner wants data blocks; false when closed.
    bool GetAcceptDataBlocks();
    void SetAcceptDataBlocks(bool accept);

    /// Number of the next line; -1 when closed.
    long GetIndex();

    /// Stores and returns the number of the next line; -1 when closed. Takes no lock.
    long SetIndex(long index);

    /// Takes the next line's number: 100000 to 999998. After 999998 come 100000, once more
    /// 100000, and 100001. -1 when closed. The caller holds a `Lock`.
    long GetAndIncIndex();

    /// Gives the start and the fill length in bytes of a half (0 or 1), which becomes the
    /// current one; null and 0 when closed. The caller holds a `Lock`.
    void GetBuffer(int index, char** data, long* length);

    /// Empties the current half. The caller holds a `Lock`.
    void ReleaseBuffer();

    /// The process's attachment, of which all copies of this object are one user; null when closed.
    const std::shared_ptr<vlbase::logging::LogAttachment>& attachment() const;

    /// How the last `Open` of a closed object ended.
    vlbase::logging::OpenResult lastOpening() const;

private:
    int m_role;
    int m_bufferSize;
    int m_reserveBytes;
    vlbase::logging::OpenResult m_lastOpening{};
    int m_currentBuffer = 0;
    long m_takenIndex = -1;            // number that GetAndIncIndex gave last,
    std::uint64_t m_takenPosition = 0; // and where it stands among all lines ever
    std::shared_ptr<vlbase::logging::LogAttachment> m_attachment;
};

/// Holds the shared log's mutex for as long as it lives.
class VLBASE_EXPORT Lock
{
public:
    explicit Lock(CMMShared* shared);
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    CMMShared* m_shared;
};

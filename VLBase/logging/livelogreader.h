#pragma once

#include <VLBase/logging/mmshared.h>
#include <VLBase/vlbase_export.h>

#include <QString>

/// Reads the shared log while it is written.
///
/// Whoever empties the viewers' half takes its lines from all other readers, so a viewer that
/// wants every line makes sure that it is the only one.
class VLBASE_EXPORT CLiveLogReader : public CMMShared
{
public:
    /// Attaches as a live reader; closed while the log has never had an owner.
    CLiveLogReader();
    CLiveLogReader(const CLiveLogReader& other);
    CLiveLogReader& operator=(const CLiveLogReader& other);
    ~CLiveLogReader() override;

    /// Locks the log and gives the start and the length in bytes of the lines since the last
    /// release, each ended by a zero byte; null and 0 when closed. All writers wait until
    /// `ReleaseBuffer`, which must follow soon.
    void GetBuffer(char** data, long* length);

    /// Marks these lines as taken and unlocks the log.
    void ReleaseBuffer();

    /// Appends \a line as it is: no number, no time, no lock.
    void SendLikeItIs(QString line);
};

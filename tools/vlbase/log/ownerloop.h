#pragma once

#include "filesink.h"
#include "lineintake.h"
#include "tools/vlbase/platform/stopsignal.h"

#include <VLBase/logging/logowner.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>

namespace vlbase::tool::log {

/// The owner at work: one thread empties the log's half into the owner's memory, another writes
/// that memory into the file, so that a disk that hangs stops no writer.
class OwnerLoop
{
public:
    using Tell = std::function<void(const QString&)>;

    /// All outlive the loop. `tell` is called from both threads, one at a time.
    OwnerLoop(logging::LogOwner& owner, FileSink& sink, LineIntake& intake, Tell tell);

    /// Works until the stop is requested, then takes and writes what is left.
    /// \return whether every line taken is in the file.
    bool run(const platform::StopSignal& stop);

    /// Text for the file besides the lines, before `run`.
    void writeFirst(const std::string& text) { m_text += text; }

private:
    logging::LogOwner::Drained drain();
    void drainTheRest();
    void writeWhileRunning();
    bool writeStaged();
    bool writeNextPiece();
    void settle();
    void tellDisk();
    void tellOne(const QString& text);

    logging::LogOwner& m_owner;
    FileSink& m_sink;
    LineIntake& m_intake;
    Tell m_tell;

    std::mutex m_ownerMutex; // draining and looking at the index exclude each other
    std::mutex m_tellMutex;
    std::mutex m_wakeMutex;
    std::condition_variable m_wake;
    bool m_hasWork = false;
    bool m_isEnding = false;

    // Of the writing thread alone.
    std::string m_text;
    std::size_t m_pieceBytes = 0; // of the staging, in the sink but not all in the file
    bool m_isDiskBad = false;
    bool m_isRotationBad = false;
    std::chrono::steady_clock::time_point m_nameLookedAt{};
};

} // namespace vlbase::tool::log

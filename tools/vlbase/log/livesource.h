#pragma once

#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/viewerclaim.h>

#include <cstddef>
#include <string>

namespace vlbase::tool::log {

/// The viewers' half of the log, for the one viewer that has the claim on it. It is small: when
/// many lines come, some are gone before this one looks. For where the owner's file cannot be read.
class LiveSource
{
public:
    explicit LiveSource(logging::ViewerClaim claim);

    bool isOpen() { return m_reader.IsOpen() || m_reader.Open(); }

    /// Appends the whole lines that came since the last call, each with a zero byte at its end.
    /// \return whether more is likely to be there already.
    bool poll(std::string& lines);

private:
    logging::ViewerClaim m_claim;
    CLiveLogReader m_reader;
    std::size_t m_mostSeen = 0;
};

} // namespace vlbase::tool::log

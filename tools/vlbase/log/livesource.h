#pragma once

#include "linesource.h"

#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/viewerclaim.h>

#include <cstddef>

namespace vlbase::tool::log {

/// The viewers' half of the log, for the one viewer that has the claim on it. It is small: when
/// many lines come, some are gone before this one looks. For where the owner's file cannot be read.
class LiveSource : public LineSource
{
public:
    explicit LiveSource(logging::ViewerClaim claim);

    bool isOpen() { return m_reader.IsOpen() || m_reader.Open(); }

    bool poll(std::string& lines) override;
    QString description() const override { return QStringLiteral("live"); }

private:
    logging::ViewerClaim m_claim;
    CLiveLogReader m_reader;
    std::size_t m_mostSeen = 0;
};

} // namespace vlbase::tool::log

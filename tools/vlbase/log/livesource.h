#pragma once

#include "linesource.h"

#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/logviewerclaim.h>

namespace vlbase::tool::log {

/// The viewers' half of the log, for the one viewer that has the claim on it.
class LiveSource : public LineSource
{
public:
    explicit LiveSource(logging::LogViewerClaim claim);

    bool isOpen() { return m_reader.IsOpen() || m_reader.Open(); }

    bool poll(std::string& lines) override;
    void fileChanged(const std::string&) override {}
    QString description() const override { return QStringLiteral("live"); }

private:
    logging::LogViewerClaim m_claim;
    CLiveLogReader m_reader;
    std::size_t m_mostSeen = 0;
};

} // namespace vlbase::tool::log

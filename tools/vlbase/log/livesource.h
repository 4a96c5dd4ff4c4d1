#pragma once

#include "linesource.h"

#include <VLBase/logging/gapwatch.h>
#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/viewerclaim.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace vlbase::tool::log {

/// The viewers' half of the log, for the one viewer that has the claim on it. It is small: when
/// many lines come, some are gone before this one looks.
class LiveSource : public LineSource
{
public:
    explicit LiveSource(logging::ViewerClaim claim);

    bool isOpen() { return m_reader.IsOpen() || m_reader.Open(); }

    bool poll(std::string& lines) override;
    void fileChanged(const std::string&) override {}

    struct Gap
    {
        std::size_t position; ///< in what the last poll gave, of the first line behind it
        int lastIndex;        ///< of the line before it
    };
    /// Where lines are missing in what the last poll gave.
    const std::optional<Gap>& gap() const { return m_gap; }

    QString description() const override { return QStringLiteral("live"); }

private:
    void findGap(std::string_view lines, std::size_t start);

    logging::ViewerClaim m_claim;
    CLiveLogReader m_reader;
    std::size_t m_mostSeen = 0;
    logging::GapWatch m_numbers;
    std::optional<Gap> m_gap;
};

} // namespace vlbase::tool::log

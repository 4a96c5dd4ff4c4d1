#pragma once

#include <VLBase/logging/lineledger.h>
#include <VLBase/logging/ownernotice.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vlbase::tool::log {

/// Turns drained lines into the text of the log file: leaves out what is torn or already there,
/// makes everything visible, and writes how many lines are missing where they are missing.
class LineIntake
{
public:
    LineIntake(logging::LineLedger ledger, std::string station);

    /// Appends to `text` what belongs into the file of lines that each end in a zero byte.
    void take(std::string_view lines, std::string& text);

    /// Appends a notice when lines are missing since the last one, at a moment when none is
    /// under way.
    /// \param nextIndex number of the next line
    void settle(long nextIndex, std::string& text);

    std::uint64_t linesTaken() const { return m_taken; }
    std::uint64_t linesLost() const { return m_lost; }

private:
    void judgeLine(std::string_view line, std::string& text);
    void noteLost(std::uint64_t count, int last, std::string& text);

    logging::LineLedger m_ledger;
    std::string m_station;
    std::uint64_t m_taken = 0;
    std::uint64_t m_lost = 0;
};

} // namespace vlbase::tool::log

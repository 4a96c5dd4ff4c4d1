#pragma once

#include <VLBase/logging/logline.h>
#include <VLBase/logging/logwriter.h>

#include <QString>

#include <array>
#include <cstddef>

namespace vlbase::tool::log {

/// A writer that knows for each line what became of it.
class SureWriter : public CLogWriter
{
public:
    enum class Result {
        Sent,     ///< it is in the owner's half
        Full,     ///< the owner has to make room first; nothing was sent
        NoOwner,  ///< nothing was sent
        TooLong,  ///< it fits into no buffer of this log
        NoBlocks, ///< the owner does not take data blocks
    };

    using Fields = std::array<QString, 3>;

    explicit SureWriter(const QString& moduleName);

    /// Sends a line in one step with the look at the buffer, so that neither an owner that leaves
    /// nor a buffer that runs over can take it away in between. Never waits for room.
    Result send(logging::LogLevel level, const Fields& fields);

    /// A text as the log takes it.
    static QString asWritten(QString text);

    /// Bytes that the fields of a line, joined, can have in this log.
    std::size_t longestText();

private:
    std::size_t halfSize();

    std::size_t m_halfSize = 0; // of the log that is open; 0: not looked at yet
};

} // namespace vlbase::tool::log

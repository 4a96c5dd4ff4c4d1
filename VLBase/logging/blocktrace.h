#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

#include <atomic>

/// Traces the beginning and the end of a block, indented by how deep blocks are nested.
///
///     const BLOCK_TRACE trace(QStringLiteral("tune"));
///
/// Writes while bit 32 of the message mask is set, but counts the depth in any case. The depth is
/// that of the process: blocks of several threads share it.
class VLBASE_EXPORT BLOCK_TRACE
{
public:
    /// Traces "<indent><name> {".
    explicit BLOCK_TRACE(QString name);
    BLOCK_TRACE(const BLOCK_TRACE& other) = default;
    BLOCK_TRACE& operator=(const BLOCK_TRACE& other) = default;
    /// Traces "<indent>}".
    virtual ~BLOCK_TRACE();

    /// "*" and a blank for each block that is open.
    static QString GetIndent();

private:
    static std::atomic<int> m_nIndent;
};

#pragma once

#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logwriter.h>

#include <QString>

namespace bench {

/// A log of this process alone, with owner and writer in one thread.
class PrivateLog
{
public:
    explicit PrivateLog(int halfBytes)
        : m_owner(halfBytes)
    {
    }

    bool isOpen() const { return m_owner.IsOpen(); }

    /// Takes all lines out and forgets them.
    void drain()
    {
        m_owner.drain();
        for (auto lines = m_owner.pending(); !lines.empty(); lines = m_owner.pending())
            m_owner.markWritten(lines.size());
    }

private:
    vlbase::logging::LogOwner m_owner;
};

/// Opens to benchmarks what a writer's subclass may use.
class Writer : public CLogWriter
{
public:
    Writer()
        : CLogWriter(QStringLiteral("receiver"))
    {
    }

    using CLogWriter::GetAndIncIndex;
    using CLogWriter::GetBuffer;
    using CLogWriter::Send;
};

} // namespace bench

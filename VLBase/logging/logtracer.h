#pragma once

#include <VLBase/errorhandling/ilogtracer.h>
#include <VLBase/logging/logwriter.h>
#include <VLBase/vlbase_export.h>

/// Connects the error handler with the shared log. Its thread matters as that of `CLogWriter` does.
class VLBASE_EXPORT CLogTracer : public ILogTracer, public CLogWriter
{
public:
    /// Attaches as a writer of the module "Module Unknown" on this host.
    CLogTracer();
    ~CLogTracer() override;

    /// Sends the data block "Trace" with \a text, unless the owner does not accept data blocks.
    void SendDataTrace(QString text) override;

    /// Sends \a text as an error with two empty fields.
    void ReportException(QString text) override;

    /// Whether the shared log is open and an owner is there to file what is sent.
    bool IsOpen() override;
};

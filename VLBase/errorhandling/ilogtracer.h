#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

/// Where the error handler sends a copy of everything that it records.
///
/// An implementation is handed over to `ErrorHandler::SetLogTracer` and is called from every
/// thread that reports, one call at a time. It may report, too: what it reports while it runs is
/// sent to it afterwards, never from within a call. It must not wait for another thread that
/// reports. What it throws is swallowed.
class VLBASE_EXPORT ILogTracer
{
public:
    virtual ~ILogTracer();

    /// Passes on one record, a single line of text.
    virtual void SendDataTrace(QString text) = 0;

    /// Passes on a text as an error.
    virtual void ReportException(QString text) = 0;

    /// Whether what is sent can reach anybody. While it can, the handler leaves its own text
    /// file alone.
    virtual bool IsOpen() = 0;
};

#pragma once

#include <VLBase/logging/logtracer.h>

#include <atomic>
#include <utility>

/// Sends to the shared log like `CLogTracer` and counts the lines, so that a run can be checked.
///
/// It would rather wait for the log's owner than lose a line.
class CountingTracer : public ILogTracer
{
public:
    CountingTracer(const QString& module, std::atomic<unsigned>& lines)
        : m_lines(lines)
    {
        m_tracer.SetModuleName(module);
        m_tracer.SetFullBufferWait(10'000);
    }

    void SendDataTrace(QString text) override
    {
        ++m_lines;
        m_tracer.SendDataTrace(std::move(text));
    }

    void ReportException(QString text) override
    {
        ++m_lines;
        m_tracer.ReportException(std::move(text));
    }

    bool IsOpen() override { return m_tracer.IsOpen(); }

private:
    std::atomic<unsigned>& m_lines;
    CLogTracer m_tracer;
};

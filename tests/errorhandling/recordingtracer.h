#pragma once

#include <VLBase/errorhandling/ilogtracer.h>

#include <QString>
#include <QStringList>

#include <functional>
#include <utility>

/// What a tracer was sent, kept outside of it because the error handler owns tracers.
struct TracerLog
{
    QStringList sent;
    int destroyed = 0;
    bool open = true;
    std::function<void()> onIsOpen;
};

class RecordingTracer : public ILogTracer
{
public:
    /// \param answer runs inside every `SendDataTrace`
    explicit RecordingTracer(TracerLog& log, std::function<void()> answer = {})
        : m_log(log)
        , m_answer(std::move(answer))
    {
    }
    ~RecordingTracer() override { ++m_log.destroyed; }

    void SendDataTrace(QString text) override
    {
        m_log.sent += text;
        if (m_answer)
            m_answer();
    }
    void ReportException(QString) override {}
    bool IsOpen() override
    {
        if (m_log.onIsOpen)
            m_log.onIsOpen();
        return m_log.open;
    }

private:
    TracerLog& m_log;
    std::function<void()> m_answer;
};

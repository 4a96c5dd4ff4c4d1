#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

#include <cstdint>

/// Measures the time since its construction.
class VLBASE_EXPORT TimedCall
{
public:
    TimedCall();
    TimedCall(const TimedCall& other) = default;
    TimedCall& operator=(const TimedCall& other) = default;
    virtual ~TimedCall();

    /// Milliseconds since the construction.
    double GetTime() const;

    /// Traces "<name> <time> ms" when more than `threshold` milliseconds have passed and bit 32
    /// of the message mask is set.
    void Evaluate(QString name, double threshold) const;

    /// Writes "<name> Time <time>ms" to the debugger when more than `threshold` milliseconds have
    /// passed, whatever the message mask. A null name counts as an empty one.
    void Evaluate(const wchar_t* name, double threshold) const;

private:
    std::int64_t m_nStart;
};

/// Traces the length of its own life when it ends.
class VLBASE_EXPORT AutoTimedCall : public TimedCall
{
public:
    /// \param name what is measured.
    explicit AutoTimedCall(QString name);
    AutoTimedCall(const AutoTimedCall& other) = default;
    AutoTimedCall& operator=(const AutoTimedCall& other) = default;
    ~AutoTimedCall() override;

private:
    QString m_strName;
};

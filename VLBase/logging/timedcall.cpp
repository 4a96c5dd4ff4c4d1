#include "timedcall.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/platform/clocks.h>
#include <VLBase/platform/debugoutput.h>

#include <utility>

namespace {

constexpr unsigned int traceBit = 32;
constexpr unsigned short traceLine = 243;

} // namespace

TimedCall::TimedCall()
    : m_nStart(vlbase::platform::performanceCounter())
{
}

TimedCall::~TimedCall() = default;

double TimedCall::GetTime() const
{
    const std::int64_t elapsed = vlbase::platform::performanceCounter() - m_nStart;
    return static_cast<double>(elapsed) * 1000.0 /
           static_cast<double>(vlbase::platform::performanceFrequency());
}

void TimedCall::Evaluate(QString name, double threshold) const
{
    const double elapsed = GetTime();
    if (!(elapsed > threshold) || !(ErrorHandler::Instance().GetMessageMask() & traceBit))
        return;
    _Q_Trace((name + QStringLiteral(" %1 ms")).arg(elapsed),
             QStringLiteral("errorhandling/quality"), traceLine);
}

void TimedCall::Evaluate(const wchar_t* name, double threshold) const
{
    const double elapsed = GetTime();
    if (!(elapsed > threshold))
        return;
    const QString shownName = name ? QString::fromWCharArray(name) : QString();
    const QString shownTime = QString::asprintf("%4.2fms", elapsed);
    vlbase::platform::writeToDebugger(
        QStringLiteral("%1 Time %2\n").arg(shownName, shownTime).toStdWString());
}

AutoTimedCall::AutoTimedCall(QString name)
    : m_strName(std::move(name))
{
}

AutoTimedCall::~AutoTimedCall()
{
    // By the time of the second reading the counter has gone on, so that this reports.
    Evaluate(m_strName, GetTime());
}

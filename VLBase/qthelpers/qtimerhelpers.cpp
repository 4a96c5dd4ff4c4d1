#include "qtimerhelpers.h"

#include <VLBase/qthelpers/internal/lastowner.h>
#include <VLBase/qthelpers/internal/qlambdatimer.h>

#include <utility>

namespace QTimerHelpers {

namespace detail {

QLambdaTimer::QLambdaTimer(std::function<void()> function)
    : m_call(std::make_shared<Call>())
{
    m_call->function = function ? std::move(function) : [] {};
    connect(this, &QTimer::timeout, this, &QLambdaTimer::onTimeout);
    connect(this, &QObject::destroyed, [call = m_call] { call->destroyed = true; });
}

void QLambdaTimer::onTimeout()
{
    const std::shared_ptr<Call> call = m_call;
    call->function();
    if (!call->destroyed)
        deleteLater();
}

} // namespace detail

QTimer* singleShot(int milliseconds, const std::function<void()>& function)
{
    auto* timer = new detail::QLambdaTimer(function);
    vlbase::qthelpers::deleteWithEventLoop(timer);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(true);
    timer->start(milliseconds);
    return timer;
}

} // namespace QTimerHelpers

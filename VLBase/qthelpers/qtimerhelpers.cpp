#include "qtimerhelpers.h"

#include <VLBase/qthelpers/internal/lastowner.h>
#include <VLBase/qthelpers/internal/qlambdatimer.h>

#include <QPointer>
#include <QScopeGuard>

#include <algorithm>

namespace QTimerHelpers {

namespace detail {

QLambdaTimer::QLambdaTimer(const std::function<void()>& function)
    : m_function(std::make_shared<const std::function<void()>>(function ? function : [] {}))
{
    connect(this, &QTimer::timeout, this, &QLambdaTimer::onTimeout);
}

void QLambdaTimer::onTimeout()
{
    // The function may end the timer, or throw.
    const auto function = m_function;
    const auto deleted = qScopeGuard([self = QPointer<QLambdaTimer>(this)] {
        if (self)
            self->deleteLater();
    });
    (*function)();
}

} // namespace detail

QTimer* singleShot(int milliseconds, const std::function<void()>& function)
{
    auto* timer = new detail::QLambdaTimer(function);
    vlbase::qthelpers::deleteWithEventLoop(timer);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(true);
    timer->start(std::max(milliseconds, 0));
    return timer;
}

} // namespace QTimerHelpers

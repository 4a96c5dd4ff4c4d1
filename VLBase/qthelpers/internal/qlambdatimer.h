#pragma once

#include <QTimer>

#include <functional>
#include <memory>

namespace QTimerHelpers::detail {

/// A timer that runs a function object when it fires, and then deletes itself.
class QLambdaTimer : public QTimer
{
    Q_OBJECT

public:
    explicit QLambdaTimer(const std::function<void()>& function);

private Q_SLOTS:
    void onTimeout();

private:
    // Shared with a running call, which may end the timer.
    std::shared_ptr<const std::function<void()>> m_function;
};

} // namespace QTimerHelpers::detail

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
    explicit QLambdaTimer(std::function<void()> function);

private Q_SLOTS:
    void onTimeout();

private:
    // A slot connected to the timer's own destroyed() would write into an object that is no
    // QLambdaTimer any more, so what a running call must know about its end it shares.
    struct Call
    {
        std::function<void()> function;
        bool destroyed = false;
    };

    std::shared_ptr<Call> m_call;
};

} // namespace QTimerHelpers::detail

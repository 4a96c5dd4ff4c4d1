#include "signaldelayer.h"

#include <QAction>
#include <QPointer>
#include <QScopeGuard>
#include <QTimerEvent>

#include <algorithm>
#include <memory>

namespace QObjectHelpers {

SignalDelayer::SignalDelayer(int delay, QObject* parent)
    : QObject(parent)
    , m_delay(delay)
{
}

SignalDelayer* SignalDelayer::connectTexts(QObject* sender, const char* signal, const char* ownSlot,
                                           const char* ownSignal, QObject* receiver,
                                           const char* slot, int delay, Qt::ConnectionType type)
{
    if (!sender || !signal || !receiver || !slot)
        return nullptr;
    std::unique_ptr<SignalDelayer> delayer(new SignalDelayer(delay, sender));
    // A sender of another thread is refused as parent, which would leave the delayer to nobody.
    const bool connected = delayer->parent() == sender &&
                           connect(sender, signal, delayer.get(), ownSlot, Qt::AutoConnection) &&
                           connect(delayer.get(), ownSignal, receiver, slot, type) &&
                           connect(receiver, "2destroyed()", delayer.get(), "1deleteLater()", type);
    return connected ? delayer.release() : nullptr;
}

int SignalDelayer::delay() const
{
    return m_delay;
}

void SignalDelayer::setDelay(int delay)
{
    m_delay = delay;
}

void SignalDelayer::setSlotInvoker(const std::function<void()>& invoker)
{
    m_invoker = invoker;
    if (m_timerId == 0)
        m_timerId = startTimer(std::max(m_delay, 0), Qt::PreciseTimer);
}

void SignalDelayer::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timerId)
        return;
    // The delivery may raise the signal again, which replaces the pending invoker, end the sender,
    // and with it this object, or throw.
    const auto atRest = qScopeGuard([self = QPointer<SignalDelayer>(this)] {
        if (self)
            self->dropPending();
    });
    if (const std::function<void()> invoker = m_invoker)
        invoker();
}

void SignalDelayer::dropPending()
{
    killTimer(m_timerId);
    m_timerId = 0;
    m_invoker = nullptr;
}

void SignalDelayer::onSignal()
{
    setSlotInvoker([this] { Q_EMIT signalled(); });
}

void SignalDelayer::onSignal(bool value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(int value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(double value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(const QString& value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(QAction* value)
{
    setSlotInvoker([this, action = QPointer<QAction>(value)] { Q_EMIT signalled(action.data()); });
}

} // namespace QObjectHelpers

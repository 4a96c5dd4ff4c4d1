#pragma once

#include <VLBase/vlbase_export.h>

#include <QObject>
#include <QString>

#include <functional>

class QAction;

namespace QObjectHelpers {

namespace detail {

/// The slot and signal texts of a signature that a delayer can carry.
template <typename Signature> struct DelayerTexts;

template <> struct DelayerTexts<void()>
{
    static constexpr const char* slot = "1onSignal()";
    static constexpr const char* signal = "2signalled()";
};
template <> struct DelayerTexts<void(bool)>
{
    static constexpr const char* slot = "1onSignal(bool)";
    static constexpr const char* signal = "2signalled(bool)";
};
template <> struct DelayerTexts<void(int)>
{
    static constexpr const char* slot = "1onSignal(int)";
    static constexpr const char* signal = "2signalled(int)";
};
template <> struct DelayerTexts<void(double)>
{
    static constexpr const char* slot = "1onSignal(double)";
    static constexpr const char* signal = "2signalled(double)";
};
template <> struct DelayerTexts<void(const QString&)>
{
    static constexpr const char* slot = "1onSignal(const QString&)";
    static constexpr const char* signal = "2signalled(const QString&)";
};
template <> struct DelayerTexts<void(QAction*)>
{
    static constexpr const char* slot = "1onSignal(QAction*)";
    static constexpr const char* signal = "2signalled(QAction*)";
};

} // namespace detail

/// Delivers a burst of signals as one, with the arguments of the last.
///
/// A throttle: the first signal of a burst fixes the moment of delivery, later ones change the
/// arguments only, so a steady stream is delivered once per delay. A signal that the receiver
/// raises while it handles the delivery is dropped. A receiver that throws has had the delivery.
///
///     SignalDelayer::connectDelayed<void(int)>(dial, SIGNAL(valueChanged(int)),
///                                              receiver, SLOT(tune(int)), 100);
///
/// A delayer is a child of the sender and goes when either end does, dropping what is pending.
/// An action that ends before it is delivered arrives as a null pointer.
class VLBASE_EXPORT SignalDelayer : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE(<QAction>)

public:
    /// Connects `signal` of `sender` with `slot` of `receiver` (texts as `SIGNAL` and `SLOT` make
    /// them) through a new delayer.
    /// \param delay milliseconds; below 0 counts as 0.
    /// \param type  how the delivery reaches the receiver.
    /// \return the delayer, or null when an argument is null, a connection fails or the sender
    ///         lives in another thread. Nothing is left behind then.
    template <typename Signature>
    static SignalDelayer* connectDelayed(QObject* sender, const char* signal, QObject* receiver,
                                         const char* slot, int delay,
                                         Qt::ConnectionType type = Qt::AutoConnection)
    {
        return connectTexts(sender, signal, detail::DelayerTexts<Signature>::slot,
                            detail::DelayerTexts<Signature>::signal, receiver, slot, delay, type);
    }

    /// Milliseconds between the first signal of a burst and its delivery.
    int delay() const;

    /// Holds for bursts that begin afterwards.
    void setDelay(int delay);

protected:
    SignalDelayer(int delay, QObject* parent);

    /// Makes `invoker` what is run at the next delivery, which is fixed now if none is pending.
    void setSlotInvoker(const std::function<void()>& invoker);

    void timerEvent(QTimerEvent* event) override;

protected Q_SLOTS:
    void onSignal();
    void onSignal(bool value);
    void onSignal(int value);
    void onSignal(double value);
    void onSignal(const QString& value);
    void onSignal(QAction* value);

Q_SIGNALS:
    void signalled();
    void signalled(bool value);
    void signalled(int value);
    void signalled(double value);
    void signalled(const QString& value);
    void signalled(QAction* value);

private:
    static SignalDelayer* connectTexts(QObject* sender, const char* signal, const char* ownSlot,
                                       const char* ownSignal, QObject* receiver, const char* slot,
                                       int delay, Qt::ConnectionType type);
    void dropPending();

    int m_delay;
    int m_timerId = 0;
    std::function<void()> m_invoker;
};

} // namespace QObjectHelpers

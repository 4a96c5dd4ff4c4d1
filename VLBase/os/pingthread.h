#pragma once

#include <VLBase/os/ivelaos.h>
#include <VLBase/vlbase_export.h>

#include <QByteArray>
#include <QEvent>
#include <QObject>
#include <QString>
#include <QThread>
#include <QtGlobal>

#include <atomic>
#include <memory>

/// The outcome of one ping of a PingThread, on its way to the handler.
class VLBASE_EXPORT EventPingResult : public QEvent
{
public:
    static constexpr auto eventType = static_cast<QEvent::Type>(1001);

    explicit EventPingResult(const Icmp_Echo_Result& result);

    quint32 replies() const { return m_result.replies; }
    quint32 roundTripTime() const { return m_result.roundTripTime; } ///< milliseconds
    quint8 timeToLive() const { return m_result.timeToLive; }
    QString message() const { return m_result.message; } ///< empty on success

    EventPingResult* clone() const override;

private:
    Icmp_Echo_Result m_result;
};

/// Receives the results of a PingThread, as events of the type EventPingResult::eventType:
///
///     bool event(QEvent* event) override
///     {
///         if (event->type() != EventPingResult::eventType)
///             return IPingHandler::event(event);
///         show(static_cast<EventPingResult*>(event)->replies() > 0);
///         return true;
///     }
class VLBASE_EXPORT IPingHandler : public QObject
{
    Q_OBJECT

public:
    explicit IPingHandler(QObject* parent = nullptr);
    ~IPingHandler() override;
};

/// Pings a host again and again and posts each result to a handler, in the handler's thread.
///
///     PingThread thread(&handler);
///     thread.SetAddress(QStringLiteral("10.1.2.3"));
///     thread.SetFrequency(10); // every ten seconds, each with a limit of five
///     thread.start();
///
/// SetAddress(), SetFrequency() and Stop() may be called at any time, from any thread. What they
/// change counts from the next ping on; an interval also for the wait that is under way.
///
/// The thread asks VelaOS::Get() for its pings. Where nobody has before, it becomes the
/// application thread by that.
class VLBASE_EXPORT PingThread : public QThread
{
    Q_OBJECT

public:
    /// \param handler may end before the thread, in any thread of its own; later results are
    ///        dropped. So are all of a null handler.
    explicit PingThread(IPingHandler* handler);

    /// Stops the thread and waits for its end.
    ~PingThread() override;

    /// The host to ping; with an empty one there are no pings. What follows the first ":" is taken
    /// for a port and dropped, so an IPv6 address has to have a name. "localhost", spelled like
    /// this, is 127.0.0.1.
    void SetAddress(QString address);

    /// Pings start every \a seconds, each with a limit of half of that. 0, as at first, pings
    /// nobody. From 4294967 on it is that, 49 days.
    void SetFrequency(unsigned seconds);

    /// Ends the thread within a second, and for good: it cannot be started again. A ping under way
    /// is given up without a result, but while it asks the name service, and on Windows while it
    /// waits for the reply, the thread has to wait for that.
    void Stop();

protected:
    void run() override;

private:
    class Receiver;

    void pingOnce(const QByteArray& host);
    void waitForNext(qint64 beginMs) const;

    std::shared_ptr<Receiver> m_receiver;
    QMetaObject::Connection m_receiverEnd;
    std::atomic<const QByteArray*> m_given{nullptr}; // owned; not taken over by the thread yet
    std::atomic<quint32> m_intervalMs{0};
    std::atomic<bool> m_isRunning{true};
};

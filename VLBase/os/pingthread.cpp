#include "pingthread.h"

#include "internal/echorequest.h"

#include <VLBase/os/velaos.h>

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <limits>
#include <mutex>

namespace {

qint64 nowMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

EventPingResult::EventPingResult(const Icmp_Echo_Result& result)
    : QEvent(eventType)
    , m_result(result)
{
}

EventPingResult* EventPingResult::clone() const
{
    return new EventPingResult(*this);
}

IPingHandler::IPingHandler(QObject* parent)
    : QObject(parent)
{
}

IPingHandler::~IPingHandler() = default;

/// The handler as long as it lives. Both the thread and the handler's connection share it, so
/// that either may end first.
class PingThread::Receiver
{
public:
    explicit Receiver(QObject* handler)
        : m_handler(handler)
    {
    }

    void post(const Icmp_Echo_Result& result)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_handler != nullptr)
            QCoreApplication::postEvent(m_handler, new EventPingResult(result));
    }

    void forget()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_handler = nullptr;
    }

private:
    std::mutex m_lock;
    QObject* m_handler;
};

PingThread::PingThread(IPingHandler* handler)
    : m_receiver(std::make_shared<Receiver>(handler))
{
    // Without this thread as context the connection is a direct one: the handler cannot end while
    // a result is being posted. Events that it has not seen end with it.
    if (handler != nullptr)
        m_receiverEnd =
            connect(handler, &QObject::destroyed, [receiver = m_receiver] { receiver->forget(); });
}

PingThread::~PingThread()
{
    Stop();
    wait();
    disconnect(m_receiverEnd);
    delete m_given.exchange(nullptr);
}

void PingThread::SetAddress(QString address)
{
    QByteArray host = address.toUtf8();
    if (const qsizetype colon = host.indexOf(':'); colon >= 0)
        host.truncate(colon);
    if (host == "localhost")
        host = "127.0.0.1";
    // Whoever takes the text out owns it: the thread, or the next call.
    delete m_given.exchange(new QByteArray(host));
}

void PingThread::SetFrequency(unsigned seconds)
{
    constexpr unsigned most = std::numeric_limits<quint32>::max() / 1000;
    m_intervalMs = std::min(seconds, most) * 1000;
}

void PingThread::Stop()
{
    m_isRunning = false;
}

void PingThread::run()
{
    QByteArray host;
    const auto takeGiven = [this, &host] {
        if (const std::unique_ptr<const QByteArray> given(m_given.exchange(nullptr)); given)
            host = *given;
    };
    while (m_isRunning) {
        const qint64 beginMs = nowMs();
        takeGiven();
        pingOnce(host);
        waitForNext(beginMs);
    }
    takeGiven(); // the last touch, from which the destructor goes on
}

void PingThread::pingOnce(const QByteArray& host)
{
    const quint32 intervalMs = m_intervalMs;
    if (intervalMs == 0 || host.isEmpty())
        return;
    const vlbase::PingInterest interest(m_isRunning);
    const Icmp_Echo_Result result =
        VelaOS::Get().Ping(4, static_cast<int>(intervalMs / 2), host.constData());
    // One that was given up says nothing about the host.
    const bool isGivenUp = !m_isRunning && result.replies == 0;
    if (m_intervalMs != 0 && !isGivenUp)
        m_receiver->post(result);
}

void PingThread::waitForNext(qint64 beginMs) const
{
    constexpr qint64 idlePeriodMs = 60000;
    constexpr qint64 longestSleepMs = 1000;
    while (m_isRunning) {
        const quint32 intervalMs = m_intervalMs;
        const qint64 periodMs = intervalMs == 0 ? idlePeriodMs : intervalMs;
        const qint64 leftMs = periodMs - (nowMs() - beginMs);
        if (leftMs < 1)
            return;
        msleep(static_cast<unsigned long>(std::min(leftMs, longestSleepMs)));
    }
}

#include "timeservice.h"

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

namespace vlbase {

namespace {

constexpr quint16 servicePort = 60123;
constexpr int limitMs = 100;

} // namespace

qint32 requestSystemTime(const platform::SystemTime& utc)
{
    qint32 answer = -1;
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy); // the application's need not reach this machine
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), servicePort);
    if (!socket.waitForConnected(limitMs))
        return answer;

    socket.write(reinterpret_cast<const char*>(utc.data()), sizeof utc);
    socket.flush();
    // The stream may bring the answer in pieces.
    const QDeadlineTimer deadline(limitMs);
    while (socket.bytesAvailable() < qint64{sizeof answer}) {
        if (!socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            return answer;
    }
    socket.read(reinterpret_cast<char*>(&answer), sizeof answer);
    return answer;
}

} // namespace vlbase

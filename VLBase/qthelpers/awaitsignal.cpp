#include "awaitsignal.h"

#include <VLBase/qthelpers/signalhandler.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <memory>

namespace QObjectHelpers {

bool awaitSignalOneOf(const QObject* object, std::vector<const char*> signalTexts, int timeout)
{
    using namespace std::chrono_literals;

    QTimer timer;
    QEventLoop loop;
    bool signalled = false;
    const auto onSignal = [&signalled, &loop] {
        signalled = true;
        loop.quit();
    };
    const std::unique_ptr<SignalHandler> handler(
        SignalHandler::createHandler<void()>(onSignal, nullptr));
    for (const char* signal : signalTexts)
        QObject::connect(object, signal, handler.get(), "1onSignal()");
    if (timeout >= 0) {
        QObject::connect(&timer, "2timeout()", handler.get(), "1onSignal()");
        timer.setTimerType(Qt::PreciseTimer);
        timer.setSingleShot(true);
        timer.start(timeout);
    }
    loop.exec();
    if (!signalled) {
        // The application is quitting; by the time the outer loop runs again its request may
        // have been lost.
        QTimer::singleShot(5s, Qt::PreciseTimer, QCoreApplication::instance(), "1quit()");
        return false;
    }
    return timeout < 0 || !timer.isActive();
}

bool awaitSignal(const QObject* object, const char* signal, int timeout)
{
    return awaitSignalOneOf(object, {signal}, timeout);
}

void wait(int milliseconds)
{
    if (milliseconds < 0)
        return;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    timer.start(milliseconds);
    awaitSignalOneOf(&timer, {"2timeout()"}, milliseconds);
}

} // namespace QObjectHelpers

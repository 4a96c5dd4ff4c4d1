#include "awaitsignal.h"

#include <VLBase/qthelpers/signalhandler.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <chrono>
#include <memory>

namespace QObjectHelpers {

namespace {

/// An event loop left without reason has been left with the application, or with its thread.
/// By the time the application's outer loop runs again its quit may have been lost; that of a
/// thread is kept.
void quitAgainLater()
{
    using namespace std::chrono_literals;
    QCoreApplication* application = QCoreApplication::instance();
    if (application && application->thread() == QThread::currentThread())
        QTimer::singleShot(5s, Qt::PreciseTimer, application, "1quit()");
}

} // namespace

bool awaitSignalOneOf(const QObject* object, std::vector<const char*> signalTexts, int timeout)
{
    enum class Came { Nothing, Signal, Timeout };

    QTimer timer;
    QEventLoop loop;
    Came first = Came::Nothing; // what comes while a wait inside this one delays its end is late
    const auto onFirst = [&first, &loop](Came came) {
        if (first == Came::Nothing)
            first = came;
        loop.quit();
    };
    const std::unique_ptr<SignalHandler> handler(
        SignalHandler::createHandler<void()>([&onFirst] { onFirst(Came::Signal); }, nullptr));
    for (const char* signal : signalTexts)
        QObject::connect(object, signal, handler.get(), "1onSignal()");
    if (timeout >= 0) {
        QObject::connect(&timer, &QTimer::timeout, &timer, [&onFirst] { onFirst(Came::Timeout); });
        timer.setTimerType(Qt::PreciseTimer);
        timer.setSingleShot(true);
        timer.start(timeout);
    }
    loop.exec();
    if (first == Came::Nothing) {
        quitAgainLater();
        return false;
    }
    return timeout < 0 || first == Came::Timeout;
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

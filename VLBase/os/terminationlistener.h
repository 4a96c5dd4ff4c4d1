#pragma once

#include <VLBase/vlbase_export.h>

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace vlbase::platform {
class QuitListener;
}

/// Tells when another process asks the applications of the desktop to quit
/// (IVelaOS::BroadcastTerminationMessage()). What is done then is up to the application:
///
///     QApplication app(argc, argv);
///     TerminationListener termination;
///     QObject::connect(&termination, &TerminationListener::terminationRequested,
///                      &app, &QCoreApplication::quit);
///
/// It hears by a window of its own that nobody sees, so it serves programs without windows too.
/// On Linux it needs an X display, but no platform plugin of Qt; a hanging server is waited for
/// for up to four seconds when it is made.
///
/// It lives in one thread, any that runs a Qt event loop. One per process is enough.
class VLBASE_EXPORT TerminationListener : public QObject
{
    Q_OBJECT

public:
    explicit TerminationListener(QObject* parent = nullptr);
    ~TerminationListener() override;

    /// False without a display, and when that has ended meanwhile.
    bool isListening() const;

signals:
    /// Once for each time that a process asks for it; this process does not hear itself.
    void terminationRequested();

private:
    void read();

    std::unique_ptr<vlbase::platform::QuitListener> m_listener;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

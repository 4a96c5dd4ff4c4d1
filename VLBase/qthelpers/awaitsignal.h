#pragma once

#include <VLBase/vlbase_export.h>

#include <vector>

class QObject;

/// Waits inside a local event loop: events of the calling thread go on being processed, so its
/// objects may change or end meanwhile. Signals are named by texts as `SIGNAL` makes them.
namespace QObjectHelpers {

/// Waits until `object` emits one of the signals.
/// \param timeout milliseconds; below 0 for no limit.
/// \return true when the time ran out before a signal came, or, without a limit, when a signal
///         came. False when a signal came within the limit, or when the application quits, or the
///         calling thread does: the application's quit is then issued again after 5 seconds, so
///         that outer loops end as well.
///
/// What came first counts, also when a wait inside this one puts its return off; it returns no
/// sooner than that one does. A signal that does not exist is one that never comes, as those of an
/// object that is null or ends meanwhile: without a limit the wait then lasts until the application
/// or the thread quits.
VLBASE_EXPORT bool awaitSignalOneOf(const QObject* object, std::vector<const char*> signalTexts,
                                    int timeout);

/// `awaitSignalOneOf` for a single signal.
VLBASE_EXPORT bool awaitSignal(const QObject* object, const char* signal, int timeout);

/// Processes events for that long. A negative time returns at once and processes none.
VLBASE_EXPORT void wait(int milliseconds);

} // namespace QObjectHelpers

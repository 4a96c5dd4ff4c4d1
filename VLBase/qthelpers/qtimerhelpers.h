#pragma once

#include <VLBase/vlbase_export.h>

#include <functional>

class QTimer;

namespace QTimerHelpers {

/// Runs `function` once, after that many milliseconds (below 0 counts as 0), in the calling thread,
/// which must have an event loop.
/// \return the timer that does so. Stopping or deleting it before it fires cancels the call;
///         afterwards it deletes itself, also when the function throws. One that never fires goes
///         with the application, or with its thread.
VLBASE_EXPORT QTimer* singleShot(int milliseconds, const std::function<void()>& function);

} // namespace QTimerHelpers

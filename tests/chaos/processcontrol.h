#pragma once

#include <QtGlobal>

/// Stops a process where it stands and lets it go on.
namespace processcontrol {

bool suspend(qint64 processId);
bool resume(qint64 processId);

} // namespace processcontrol

#pragma once

#include <VLBase/vlbase_export.h>

#include <string>

namespace vlbase::platform {

/// Shows a text to whoever debugs this process: the debugger on Windows, standard error
/// elsewhere. Leaves the thread's last error alone.
VLBASE_EXPORT void writeToDebugger(const std::wstring& text);

} // namespace vlbase::platform

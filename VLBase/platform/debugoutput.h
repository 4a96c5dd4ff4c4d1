#pragma once

#include <string>

namespace vlbase::platform {

/// Shows a text to whoever debugs this process: the debugger on Windows, standard error
/// elsewhere. Leaves the thread's last error alone.
void writeToDebugger(const std::wstring& text);

} // namespace vlbase::platform

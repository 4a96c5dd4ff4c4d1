#pragma once

#include <VLBase/os/ivelaos.h>

// The record that IVelaOS::SetWindowToForeground() takes, for systems whose own headers do not
// have it; where <windows.h> is, that defines it.
#if !__has_include(<windows.h>)
struct _PROCESS_INFORMATION
{
    void* hProcess;
    void* hThread;
    quint32 dwProcessId; ///< the only one that is looked at
    quint32 dwThreadId;
};
#endif

// Declares what the interface declares, but after the system's own header where there is one: its
// macros must not rename an operation, nor its types clash with ours. tst_velaos links this.

#if __has_include(<windows.h>)
#include <windows.h>
#endif

#include <VLBase/os/velaos.h>

int threadIdBesideSystemHeaders()
{
    IVelaOS& os = VelaOS::Get();
    // Each name beside a function or macro of the system.
    os.SetLastError(os.GetLastError());
    os.FreeLibrary(os.LoadLibraryDll(QString()));
    os.GetProcAddress(0, QString());
    os.SetWindowToForeground(static_cast<PROCESS_INFORMATION*>(nullptr));
    os.SetWindowToForeground(static_cast<HWND>(nullptr));
    return os.GetCurrentThreadId();
}

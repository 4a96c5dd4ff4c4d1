#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/toplevelwindows.h>

#include <windows.h>

namespace vlbase::platform {

namespace {

/// The first top-level window that a test holds for, null without one.
template <typename Test> HWND firstWindow(Test test)
{
    struct Search
    {
        const Test& test;
        HWND found;
    };
    Search search{test, nullptr};
    ::EnumWindows(
        [](HWND window, LPARAM data) -> BOOL {
            auto& inner = *reinterpret_cast<Search*>(data);
            if (!inner.test(window))
                return TRUE;
            inner.found = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    if (search.found == nullptr)
        setLastError(Fault::NotFound);
    return search.found;
}

bool isOfProcess(HWND window, int processId)
{
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    return owner != 0 && owner == static_cast<DWORD>(processId); // 0: it has gone meanwhile
}

HWND firstVisibleWindowOf(int processId)
{
    return firstWindow([processId](HWND window) {
        return (::GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0 &&
               isOfProcess(window, processId);
    });
}

} // namespace

std::optional<WindowPlacement> placementOf(int processId)
{
    const HWND window = firstVisibleWindowOf(processId);
    WINDOWPLACEMENT read{};
    read.length = sizeof read;
    if (window == nullptr || !::GetWindowPlacement(window, &read))
        return std::nullopt;
    const RECT& normal = read.rcNormalPosition;
    return WindowPlacement{{normal.left, normal.top, normal.right, normal.bottom},
                           static_cast<int>(read.showCmd)};
}

void place(int processId, const WindowPlacement& placement)
{
    const WindowPlace& normal = placement.normal;
    WINDOWPLACEMENT written{};
    written.length = sizeof written;
    written.showCmd = static_cast<UINT>(placement.showCommand);
    written.rcNormalPosition = {normal.left, normal.top, normal.right, normal.bottom};
    if (const HWND window = firstVisibleWindowOf(processId))
        ::SetWindowPlacement(window, &written);
}

WindowHandle mainWindowOf(int processId)
{
    return reinterpret_cast<WindowHandle>(firstWindow([processId](HWND window) {
        return isOfProcess(window, processId) && ::GetWindow(window, GW_OWNER) == nullptr &&
               ::IsWindowVisible(window);
    }));
}

bool bringToForeground(WindowHandle handle)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the handle is handed around as a number.
    const auto window = reinterpret_cast<HWND>(handle);
    ::ShowWindow(window, SW_RESTORE);
    bool isInFront = false;
    for (int tries = 0; tries < 10 && !isInFront; ++tries) {
        isInFront = ::SetForegroundWindow(window) != FALSE;
        ::Sleep(1);
    }
    const DWORD error = ::GetLastError();
    // Null would stand for all windows of the desktop.
    if (window != nullptr) {
        ::InvalidateRect(window, nullptr, TRUE);
        ::UpdateWindow(window);
    }
    ::SetLastError(error);
    return isInFront;
}

} // namespace vlbase::platform

#pragma once

#include <cstdint>
#include <optional>

namespace vlbase::platform {

/// The HWND of a window, or its identifier in X11.
using WindowHandle = std::uintptr_t;

/// Pixels of the screen, with the frame, the right and bottom edge excluded.
struct WindowPlace
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    friend bool operator==(const WindowPlace& a, const WindowPlace& b)
    {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
};

/// Where a window is while it is neither minimised nor maximised, and how it is shown: 1 normally,
/// 2 minimised, 3 maximised. To place a window, every value that Windows' ShowWindow takes goes.
struct WindowPlacement
{
    WindowPlace normal;
    int showCommand = 1;
};

// The windows of a process come in the order in which they lie on the screen, the topmost first.
// Minimised ones are visible, only hidden ones are not. Without a display all of this fails.

/// The placement of the first visible top-level window of a process.
///
/// X11 does not tell where a maximised window was before: it is where this process has seen or
/// put it last, and where it is now when it never has.
std::optional<WindowPlacement> placementOf(int processId);

/// Places the first visible top-level window of a process. Its application or the window manager
/// may make something else of it; on Linux that is waited for, at most a third of a second.
void place(int processId, const WindowPlacement& placement);

/// The first visible top-level window of a process that belongs to no other one; 0 without one.
WindowHandle mainWindowOf(int processId);

/// Restores a window when it is minimised or maximised, and brings it to the front. Tries that ten
/// times, on Linux in half a second.
/// \return whether it is there.
bool bringToForeground(WindowHandle window);

} // namespace vlbase::platform

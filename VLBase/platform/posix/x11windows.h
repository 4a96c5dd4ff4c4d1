#pragma once

#include "x11display.h"

#include <optional>
#include <vector>

namespace vlbase::platform {

// What the family means by its windows, in terms of X11, of the window manager conventions
// (ICCCM) and their extension (EWMH).

/// Whether a window manager runs that follows EWMH. What an ended one left behind does not count.
bool hasExtendedManager(X11Display& display);

/// The windows that applications show to the user, minimised ones too, the topmost first.
std::vector<xcb_window_t> topLevelWindows(X11Display& display);

/// The windows that are shown to nobody but wait for the message to quit.
std::vector<xcb_window_t> windowsAwaitingQuit(X11Display& display);

/// The process of this machine that a window says it belongs to; none on another machine.
std::optional<int> processOf(X11Display& display, xcb_window_t window);
/// Has a window say that it belongs to the running process.
void markAsOwn(X11Display& display, xcb_window_t window);

/// Whether a window belongs to another one, as dialogs do.
bool hasOwner(X11Display& display, xcb_window_t window);

struct X11WindowState
{
    bool isMinimised = false;
    bool isMaximised = false; // or will be, when it is no longer minimised
};
X11WindowState stateOf(X11Display& display, xcb_window_t window);

/// A frame's widths, as the window manager draws it around a window.
struct X11Frame
{
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
};
X11Frame frameOf(X11Display& display, xcb_window_t window);

// Requests to the window manager, which may ignore them.

void setMaximised(X11Display& display, xcb_window_t window, bool isMaximised);
void minimise(X11Display& display, xcb_window_t window);
void withdraw(X11Display& display, xcb_window_t window);

} // namespace vlbase::platform

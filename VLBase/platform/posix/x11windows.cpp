#include "x11windows.h"

#include <algorithm>
#include <iterator>
#include <sys/utsname.h>
#include <unistd.h>

namespace vlbase::platform {

namespace {

// Values of WM_STATE.
constexpr std::uint32_t withdrawnState = 0;
constexpr std::uint32_t iconicState = 3;

std::string machineName()
{
    utsname names{};
    ::uname(&names);
    return static_cast<const char*>(names.nodename);
}

/// WM_STATE, which window managers set on every window that they care for.
std::uint32_t managedState(X11Display& display, xcb_window_t window)
{
    const xcb_atom_t wmState = display.atom(X11Name::WmState);
    const auto state = display.numbers(window, wmState, wmState);
    return state.empty() ? withdrawnState : state.front();
}

std::vector<xcb_window_t> childrenOf(X11Display& display, xcb_window_t window)
{
    const auto tree =
        display.reply<xcb_query_tree_reply_t>(xcb_query_tree(display.connection(), window));
    if (!tree)
        return {};
    const xcb_window_t* const begin = xcb_query_tree_children(tree.get());
    std::vector<xcb_window_t> topmostFirst(begin, begin + tree->children_len);
    std::reverse(topmostFirst.begin(), topmostFirst.end());
    return topmostFirst;
}

/// The managed window that this one is, or is the frame of.
xcb_window_t managedWindowIn(X11Display& display, xcb_window_t window, int depth)
{
    if (managedState(display, window) != withdrawnState)
        return window;
    if (depth == 0)
        return XCB_WINDOW_NONE;
    for (const xcb_window_t child : childrenOf(display, window)) {
        if (const xcb_window_t found = managedWindowIn(display, child, depth - 1))
            return found;
    }
    return XCB_WINDOW_NONE;
}

/// Whether an application shows it, and not just as a menu or a hint.
bool isShownUnmanaged(X11Display& display, xcb_window_t window)
{
    const auto attributes = display.reply<xcb_get_window_attributes_reply_t>(
        xcb_get_window_attributes(display.connection(), window));
    return attributes && attributes->map_state != XCB_MAP_STATE_UNMAPPED &&
           attributes->override_redirect == 0 &&
           attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

std::vector<xcb_window_t> windowsInTree(X11Display& display)
{
    constexpr int deepestFrame = 3;
    std::vector<xcb_window_t> windows;
    for (const xcb_window_t child : childrenOf(display, display.root())) {
        if (const xcb_window_t managed = managedWindowIn(display, child, deepestFrame))
            windows.push_back(managed);
        else if (isShownUnmanaged(display, child))
            windows.push_back(child);
    }
    return windows;
}

} // namespace

bool hasExtendedManager(X11Display& display)
{
    // The manager keeps a window that names itself, and that ends with it.
    const xcb_atom_t check = display.atom(X11Name::SupportingWmCheck);
    const auto named = display.numbers(display.root(), check, XCB_ATOM_WINDOW);
    return !named.empty() && display.numbers(named.front(), check, XCB_ATOM_WINDOW) == named;
}

std::vector<xcb_window_t> topLevelWindows(X11Display& display)
{
    if (!hasExtendedManager(display))
        return windowsInTree(display);
    for (const X11Name list : {X11Name::ClientListStacking, X11Name::ClientList}) {
        auto windows = display.numbers(display.root(), display.atom(list), XCB_ATOM_WINDOW);
        if (!windows.empty()) {
            std::reverse(windows.begin(), windows.end());
            return windows;
        }
    }
    return {};
}

std::vector<xcb_window_t> windowsAwaitingQuit(X11Display& display)
{
    const xcb_atom_t quit = display.atom(X11Name::QuitApp);
    std::vector<xcb_window_t> windows = childrenOf(display, display.root());
    const auto end = std::remove_if(windows.begin(), windows.end(), [&](xcb_window_t window) {
        return display.numbers(window, quit, XCB_ATOM_CARDINAL).empty();
    });
    windows.erase(end, windows.end());
    return windows;
}

std::optional<int> processOf(X11Display& display, xcb_window_t window)
{
    const auto id = display.numbers(window, display.atom(X11Name::ProcessId), XCB_ATOM_CARDINAL);
    // The same number on another machine, whose windows are shown here, is another process.
    if (id.empty() || id.front() == 0 ||
        display.text(window, display.atom(X11Name::ClientMachine)) != machineName())
        return std::nullopt;
    return static_cast<int>(id.front());
}

void markAsOwn(X11Display& display, xcb_window_t window)
{
    const auto id = static_cast<std::uint32_t>(::getpid());
    const std::string machine = machineName();
    xcb_change_property(display.connection(), XCB_PROP_MODE_REPLACE, window,
                        display.atom(X11Name::ProcessId), XCB_ATOM_CARDINAL, 32, 1, &id);
    xcb_change_property(display.connection(), XCB_PROP_MODE_REPLACE, window,
                        display.atom(X11Name::ClientMachine), XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(machine.size()), machine.data());
}

bool hasOwner(X11Display& display, xcb_window_t window)
{
    const auto owner = display.numbers(window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW);
    return !owner.empty() && owner.front() != XCB_WINDOW_NONE;
}

X11WindowState stateOf(X11Display& display, xcb_window_t window)
{
    // Without EWMH nothing says more than this. With it, this also says "iconic" of windows on
    // another of the user's desktops.
    if (!hasExtendedManager(display))
        return {managedState(display, window) == iconicState, false};
    const auto states = display.numbers(window, display.atom(X11Name::State), XCB_ATOM_ATOM);
    const auto has = [&](X11Name name) {
        return std::find(states.begin(), states.end(), display.atom(name)) != states.end();
    };
    return {has(X11Name::StateHidden),
            has(X11Name::MaximisedHorizontally) && has(X11Name::MaximisedVertically)};
}

X11Frame frameOf(X11Display& display, xcb_window_t window)
{
    const auto widths =
        display.numbers(window, display.atom(X11Name::FrameExtents), XCB_ATOM_CARDINAL);
    if (widths.size() != 4 || !hasExtendedManager(display))
        return {};
    return {static_cast<int>(widths[0]), static_cast<int>(widths[1]), static_cast<int>(widths[2]),
            static_cast<int>(widths[3])};
}

void setMaximised(X11Display& display, xcb_window_t window, bool isMaximised)
{
    constexpr std::uint32_t fromTool = 2; // rather than from an application about its own window
    display.tellManager(window, X11Name::State,
                        {isMaximised ? 1U : 0U, display.atom(X11Name::MaximisedHorizontally),
                         display.atom(X11Name::MaximisedVertically), fromTool, 0});
}

void minimise(X11Display& display, xcb_window_t window)
{
    display.tellManager(window, X11Name::ChangeState, {iconicState, 0, 0, 0, 0});
}

void withdraw(X11Display& display, xcb_window_t window)
{
    xcb_unmap_window(display.connection(), window);
    // A minimised window is unmapped already; the manager hears by this.
    xcb_unmap_notify_event_t event{};
    event.response_type = XCB_UNMAP_NOTIFY;
    event.event = display.root();
    event.window = window;
    xcb_send_event(display.connection(), 0, display.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
}

} // namespace vlbase::platform

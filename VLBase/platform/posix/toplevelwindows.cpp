#include "x11windows.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/toplevelwindows.h>

#include <algorithm>
#include <limits>
#include <map>
#include <mutex>

namespace vlbase::platform {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// Where windows were before they were maximised, as far as this process knows.
class KnownPlaces
{
public:
    void put(xcb_window_t window, const WindowPlace& place)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_places[window] = place;
    }

    std::optional<WindowPlace> find(xcb_window_t window)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto found = m_places.find(window);
        return found == m_places.end() ? std::nullopt : std::optional(found->second);
    }

    /// Forgets windows that are gone: the server may give their numbers to others.
    void keepOnly(const std::vector<xcb_window_t>& windows)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        for (auto it = m_places.begin(); it != m_places.end();) {
            const bool isThere =
                std::find(windows.begin(), windows.end(), it->first) != windows.end();
            it = isThere ? std::next(it) : m_places.erase(it);
        }
    }

private:
    std::mutex m_lock;
    std::map<xcb_window_t, WindowPlace> m_places;
};

KnownPlaces& knownPlaces()
{
    static auto& places = *new KnownPlaces; // static destructors may still ask
    return places;
}

/// What a value of ShowWindow makes of a window.
enum class Shown { Hidden, Normally, Minimised, Maximised, AsItIs };

std::optional<Shown> meaningOf(int showCommand)
{
    switch (showCommand) {
    case 0: // SW_HIDE
        return Shown::Hidden;
    case 1:  // SW_SHOWNORMAL
    case 4:  // SW_SHOWNOACTIVATE
    case 9:  // SW_RESTORE
    case 10: // SW_SHOWDEFAULT
        return Shown::Normally;
    case 2:  // SW_SHOWMINIMIZED
    case 6:  // SW_MINIMIZE
    case 7:  // SW_SHOWMINNOACTIVE
    case 11: // SW_FORCEMINIMIZE
        return Shown::Minimised;
    case 3: // SW_SHOWMAXIMIZED
        return Shown::Maximised;
    case 5: // SW_SHOW
    case 8: // SW_SHOWNA
        return Shown::AsItIs;
    default:
        return std::nullopt;
    }
}

xcb_window_t firstWindowOf(X11Display& display, int processId, bool canHaveOwner)
{
    const auto windows = topLevelWindows(display);
    knownPlaces().keepOnly(windows);
    const auto found = std::find_if(windows.begin(), windows.end(), [&](xcb_window_t window) {
        return processOf(display, window) == processId &&
               (canHaveOwner || !hasOwner(display, window));
    });
    if (found != windows.end())
        return *found;
    setLastError(Fault::NotFound);
    return XCB_WINDOW_NONE;
}

/// Waits until a test holds, with the server's events in between.
template <typename Test>
bool becomesTrue(X11Display& display, std::chrono::milliseconds limit, Test test)
{
    const auto end = steady_clock::now() + limit;
    for (;;) {
        if (test())
            return true;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now());
        if (left <= 0ms || xcb_connection_has_error(display.connection()) != 0)
            return false;
        display.waitForInput(std::min<std::chrono::milliseconds>(left, 5ms));
        while (display.nextEvent()) {
        }
    }
}

/// With its frame; none for a window that has gone meanwhile.
std::optional<WindowPlace> placeNow(X11Display& display, xcb_window_t window)
{
    const auto position =
        xcb_translate_coordinates(display.connection(), window, display.root(), 0, 0);
    const auto size = xcb_get_geometry(display.connection(), window);
    const auto origin = display.reply<xcb_translate_coordinates_reply_t>(position);
    const auto geometry = display.reply<xcb_get_geometry_reply_t>(size);
    if (!origin || !geometry)
        return std::nullopt;
    const X11Frame frame = frameOf(display, window);
    const int border = geometry->border_width;
    return WindowPlace{origin->dst_x - border - frame.left, origin->dst_y - border - frame.top,
                       origin->dst_x + geometry->width + border + frame.right,
                       origin->dst_y + geometry->height + border + frame.bottom};
}

/// What is left of an edge when the frame is gone.
std::uint32_t clientLength(int from, int to, int frame)
{
    constexpr std::int64_t longest = std::numeric_limits<std::int16_t>::max();
    const auto length = std::int64_t{to} - from - frame;
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(length, 1, longest));
}

void requestPlace(X11Display& display, xcb_window_t window, const WindowPlace& place)
{
    const X11Frame frame = frameOf(display, window);
    const auto x = static_cast<std::uint32_t>(place.left);
    const auto y = static_cast<std::uint32_t>(place.top);
    const std::uint32_t width = clientLength(place.left, place.right, frame.left + frame.right);
    const std::uint32_t height = clientLength(place.top, place.bottom, frame.top + frame.bottom);
    if (hasExtendedManager(display)) {
        // The position is that of the frame's corner, all four values are given, by a tool.
        constexpr std::uint32_t how = XCB_GRAVITY_NORTH_WEST | 0xFU << 8 | 2U << 12;
        display.tellManager(window, X11Name::MoveResizeWindow, {how, x, y, width, height});
        return;
    }
    const std::array<std::uint32_t, 4> values = {x, y, width, height};
    xcb_configure_window(display.connection(), window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
}

/// Some managers draw another frame around a maximised window, or around none: what was computed
/// from it is right only when it has changed back.
void moveAndResize(X11Display& display, xcb_window_t window, const WindowPlace& place)
{
    for (int tries = 0; tries < 3; ++tries) {
        requestPlace(display, window, place);
        if (becomesTrue(display, 100ms, [&] { return placeNow(display, window) == place; }))
            return;
    }
}

/// As SW_RESTORE does: minimised becomes what it was, maximised becomes normal.
void restore(X11Display& display, xcb_window_t window)
{
    const X11WindowState state = stateOf(display, window);
    if (state.isMaximised && !state.isMinimised)
        setMaximised(display, window, false);
    xcb_map_window(display.connection(), window);
}

void activate(X11Display& display, xcb_window_t window)
{
    if (hasExtendedManager(display)) {
        constexpr std::uint32_t fromTool = 2; // a request of the user, so that it is heeded
        display.tellManager(window, X11Name::ActiveWindow,
                            {fromTool, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0});
        return;
    }
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(display.connection(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_set_input_focus(display.connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window,
                        XCB_CURRENT_TIME);
}

bool isActive(X11Display& display, xcb_window_t window)
{
    if (hasExtendedManager(display)) {
        const auto active =
            display.numbers(display.root(), display.atom(X11Name::ActiveWindow), XCB_ATOM_WINDOW);
        return !active.empty() && active.front() == window;
    }
    const auto focus =
        display.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(display.connection()));
    return focus && focus->focus == window;
}

bool exists(X11Display& display, xcb_window_t window)
{
    return window != display.root() && display.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(
                                           display.connection(), window)) != nullptr;
}

} // namespace

std::optional<WindowPlacement> placementOf(int processId)
{
    const auto display = X11Display::open();
    if (!display)
        return std::nullopt;
    const xcb_window_t window = firstWindowOf(*display, processId, true);
    const auto now = window == XCB_WINDOW_NONE ? std::nullopt : placeNow(*display, window);
    if (!now) {
        setLastError(Fault::NotFound);
        return std::nullopt;
    }
    const X11WindowState state = stateOf(*display, window);
    WindowPlacement placement{*now, state.isMinimised ? 2 : state.isMaximised ? 3 : 1};
    if (state.isMaximised)
        placement.normal = knownPlaces().find(window).value_or(*now);
    else
        knownPlaces().put(window, *now);
    return placement;
}

void place(int processId, const WindowPlacement& placement)
{
    const auto wanted = meaningOf(placement.showCommand);
    if (!wanted)
        return setLastError(Fault::InvalidArgument);
    const auto display = X11Display::open();
    if (!display)
        return;
    const xcb_window_t window = firstWindowOf(*display, processId, true);
    if (window == XCB_WINDOW_NONE)
        return;

    const X11WindowState before = stateOf(*display, window);
    if (before.isMaximised) // Then it takes no place.
        setMaximised(*display, window, false);
    moveAndResize(*display, window, placement.normal);
    knownPlaces().put(window, placement.normal);
    const bool asBefore = *wanted == Shown::AsItIs;
    if (*wanted == Shown::Maximised || (asBefore && before.isMaximised))
        setMaximised(*display, window, true);
    if (*wanted == Shown::Normally || *wanted == Shown::Maximised)
        xcb_map_window(display->connection(), window);
    if (*wanted == Shown::Minimised)
        minimise(*display, window);
    if (*wanted == Shown::Hidden)
        withdraw(*display, window);
    display->sync();
}

WindowHandle mainWindowOf(int processId)
{
    const auto display = X11Display::open();
    return display ? firstWindowOf(*display, processId, false) : 0;
}

bool bringToForeground(WindowHandle handle)
{
    const auto window = static_cast<xcb_window_t>(handle);
    const auto display = X11Display::open();
    if (!display)
        return false;
    if (window != handle || !exists(*display, window)) {
        setLastError(Fault::NotFound);
        return false;
    }
    restore(*display, window);
    bool isInFront = false;
    for (int tries = 0; tries < 10 && !isInFront; ++tries) {
        activate(*display, window);
        isInFront = becomesTrue(*display, 50ms, [&] { return isActive(*display, window); });
    }
    // Shows the background, then has the application paint all of it.
    xcb_clear_area(display->connection(), 1, window, 0, 0, 0, 0);
    display->sync();
    if (!isInFront)
        setLastError(Fault::NoAnswer);
    return isInFront;
}

} // namespace vlbase::platform

#include "x11windows.h"

#include <VLBase/platform/quitbroadcast.h>

#include <set>
#include <unistd.h>

namespace vlbase::platform {

namespace {

// Tells the kind of an event from the flag that somebody sent it.
constexpr std::uint8_t kindMask = 0x7F;

} // namespace

/// A process that listens is told by its listener alone: toolkits complain of messages that they do
/// not know.
void broadcastQuit()
{
    const auto display = X11Display::open();
    if (!display)
        return;
    std::set<int> leftAlone = {::getpid()};
    const auto tell = [&](const std::vector<xcb_window_t>& windows) {
        std::set<int> told;
        for (const xcb_window_t window : windows) {
            const auto process = processOf(*display, window);
            if (process && leftAlone.count(*process) != 0)
                continue;
            display->tellApplication(window, X11Name::QuitApp);
            if (process)
                told.insert(*process);
        }
        leftAlone.merge(told);
    };
    tell(windowsAwaitingQuit(*display));
    tell(topLevelWindows(*display));
    display->sync();
}

struct QuitListener::Window
{
    std::unique_ptr<X11Display> display;
    xcb_window_t window = XCB_WINDOW_NONE;
};

QuitListener::QuitListener(std::function<void()> heard)
    : m_heard(std::move(heard))
    , m_window(std::make_unique<Window>())
{
    auto display = X11Display::open();
    if (!display)
        return;
    xcb_connection_t* const connection = display->connection();
    m_window->window = xcb_generate_id(connection);
    const std::uint32_t isNoBusinessOfManagers = 1;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window->window, display->root(), -1, -1,
                      1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT, &isNoBusinessOfManagers);
    markAsOwn(*display, m_window->window);
    const std::uint32_t waits = 1;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, m_window->window,
                        display->atom(X11Name::QuitApp), XCB_ATOM_CARDINAL, 32, 1, &waits);
    display->flush();
    m_window->display = std::move(display);
}

QuitListener::~QuitListener() = default;

bool QuitListener::isListening() const
{
    return m_window->display != nullptr;
}

int QuitListener::descriptor() const
{
    return isListening() ? xcb_get_file_descriptor(m_window->display->connection()) : -1;
}

void QuitListener::read()
{
    if (!isListening())
        return;
    bool hasHeard = false;
    while (const auto event = m_window->display->nextEvent()) {
        const auto* const message = reinterpret_cast<xcb_client_message_event_t*>(event.get());
        hasHeard = hasHeard || ((event->response_type & kindMask) == XCB_CLIENT_MESSAGE &&
                                message->type == m_window->display->atom(X11Name::QuitApp));
    }
    if (xcb_connection_has_error(m_window->display->connection()) != 0)
        m_window->display.reset();
    if (hasHeard)
        m_heard();
}

} // namespace vlbase::platform

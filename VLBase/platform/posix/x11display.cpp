#include "x11display.h"

#include <VLBase/platform/lasterror.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <ctime>
#include <future>
#include <poll.h>
#include <system_error>
#include <thread>
#include <xcb/xcbext.h>

namespace vlbase::platform {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// In the order of X11Name.
constexpr std::array<const char*, 15> nameTexts = {
    "_NET_ACTIVE_WINDOW",
    "WM_CHANGE_STATE",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "WM_CLIENT_MACHINE",
    "_NET_FRAME_EXTENTS",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_MOVERESIZE_WINDOW",
    "_NET_WM_PID",
    "QuitApp",
    "_NET_WM_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_SUPPORTING_WM_CHECK",
    "WM_STATE",
};

/// Keeps the signal away that writing to a server sends when it has just ended: xcb asks for no
/// error instead of it.
class WithoutBrokenPipe
{
public:
    WithoutBrokenPipe()
    {
        ::sigemptyset(&m_signal);
        ::sigaddset(&m_signal, SIGPIPE);
        sigset_t pending;
        ::sigpending(&pending);
        m_wasPending = ::sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
    }
    WithoutBrokenPipe(const WithoutBrokenPipe&) = delete;
    WithoutBrokenPipe& operator=(const WithoutBrokenPipe&) = delete;
    ~WithoutBrokenPipe()
    {
        const timespec atOnce{};
        if (!m_wasPending)
            ::sigtimedwait(&m_signal, nullptr, &atOnce);
        ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

private:
    sigset_t m_signal{};
    sigset_t m_before{};
    bool m_wasPending = false;
};

} // namespace

X11Display::X11Display(Connection connection, int screen, std::chrono::milliseconds answerLimit)
    : m_connection(std::move(connection))
    , m_answerLimit(answerLimit)
{
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
    for (; screens.rem > 1 && screen > 0; --screen)
        xcb_screen_next(&screens);
    m_root = screens.data->root;
}

/// xcb waits without limit for the greeting of a server, so a thread does, which is left behind
/// when that does not come in time.
X11Display::Connection X11Display::openConnection(int& screen, std::chrono::milliseconds limit)
{
    struct Connected
    {
        Connection connection;
        int screen = 0;
    };
    std::packaged_task<Connected()> task([] {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        Connected result;
        result.connection.reset(xcb_connect(nullptr, &result.screen));
        return result;
    });
    auto future = task.get_future();
    try {
        std::thread(std::move(task)).detach();
    } catch (const std::system_error&) { // no room for a thread
        return nullptr;
    }
    if (future.wait_for(limit) != std::future_status::ready)
        return nullptr;
    Connected result = future.get();
    screen = result.screen;
    return std::move(result.connection);
}

std::unique_ptr<X11Display> X11Display::open(std::chrono::milliseconds answerLimit)
{
    const char* const name = std::getenv("DISPLAY");
    int screen = 0;
    Connection connection =
        name == nullptr || *name == '\0' ? nullptr : openConnection(screen, answerLimit);
    if (connection && xcb_connection_has_error(connection.get()) == 0) {
        std::unique_ptr<X11Display> display(
            new X11Display(std::move(connection), screen, answerLimit));
        if (display->internNames())
            return display;
    }
    setLastErrorNotSupported();
    return nullptr;
}

bool X11Display::internNames()
{
    static_assert(nameTexts.size() == nameCount);
    std::array<xcb_intern_atom_cookie_t, nameCount> cookies{};
    std::transform(nameTexts.begin(), nameTexts.end(), cookies.begin(), [this](const char* name) {
        return xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(std::strlen(name)),
                               name);
    });
    std::transform(cookies.begin(), cookies.end(), m_atoms.begin(), [this](auto cookie) {
        const auto answer = reply<xcb_intern_atom_reply_t>(cookie);
        return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
    });
    return std::find(m_atoms.begin(), m_atoms.end(), xcb_atom_t{XCB_ATOM_NONE}) == m_atoms.end();
}

void* X11Display::await(unsigned sequence)
{
    flush();
    const auto limit = steady_clock::now() + m_answerLimit;
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    while (xcb_poll_for_reply(connection(), sequence, &answer, &error) == 0) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - steady_clock::now());
        if (m_isSilent || left <= 0ms) {
            m_isSilent = true;
            xcb_discard_reply(connection(), sequence);
            return nullptr;
        }
        waitForInput(left);
        nextEvent(); // which reads, unlike the loop's condition
    }
    std::free(error);
    return answer;
}

std::vector<std::uint32_t> X11Display::numbers(xcb_window_t window, xcb_atom_t property,
                                               xcb_atom_t type)
{
    constexpr std::uint32_t most = 0x10000;
    const auto answer = reply<xcb_get_property_reply_t>(
        xcb_get_property(connection(), 0, window, property, type, 0, most));
    if (!answer || answer->format != 32)
        return {};
    const auto* const begin =
        static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
    return {begin, begin + answer->value_len};
}

std::string X11Display::text(xcb_window_t window, xcb_atom_t property)
{
    constexpr std::uint32_t most = 0x1000;
    const auto answer = reply<xcb_get_property_reply_t>(
        xcb_get_property(connection(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, most));
    if (!answer || answer->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(answer.get())), answer->value_len};
}

void X11Display::tellManager(xcb_window_t window, X11Name type,
                             const std::array<std::uint32_t, 5>& data)
{
    send(m_root, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT, window,
         type, data);
}

void X11Display::tellApplication(xcb_window_t window, X11Name type)
{
    send(window, XCB_EVENT_MASK_NO_EVENT, window, type, {});
}

void X11Display::send(xcb_window_t receiver, std::uint32_t mask, xcb_window_t window, X11Name type,
                      const std::array<std::uint32_t, 5>& data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(type);
    std::copy(data.begin(), data.end(), std::begin(event.data.data32));
    xcb_send_event(connection(), 0, receiver, mask, reinterpret_cast<const char*>(&event));
}

void X11Display::flush()
{
    const WithoutBrokenPipe guard;
    xcb_flush(connection());
}

void X11Display::sync()
{
    reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection()));
}

X11Display::Owned<xcb_generic_event_t> X11Display::nextEvent()
{
    return Owned<xcb_generic_event_t>(xcb_poll_for_event(connection()));
}

void X11Display::waitForInput(std::chrono::milliseconds limit)
{
    flush();
    pollfd input{xcb_get_file_descriptor(connection()), POLLIN, 0};
    ::poll(&input, 1, static_cast<int>(limit.count()));
}

} // namespace vlbase::platform

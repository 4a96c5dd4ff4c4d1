#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace vlbase::platform {

/// The names that this library exchanges with window managers and applications.
enum class X11Name : std::size_t {
    ActiveWindow,
    ChangeState,
    ClientList,
    ClientListStacking,
    ClientMachine,
    FrameExtents,
    MaximisedHorizontally,
    MaximisedVertically,
    MoveResizeWindow,
    ProcessId,
    QuitApp,
    State,
    StateHidden,
    SupportingWmCheck,
    WmState,
};

/// One connection to the X server that DISPLAY names, for one operation.
///
/// Everything that is asked about a window may find it gone: the answer is then empty. No answer
/// is waited for without limit; after the first one that did not come in time, and when the server
/// has ended, all others fail at once.
class X11Display
{
public:
    struct Free
    {
        void operator()(void* memory) const { std::free(memory); }
    };
    template <typename T> using Owned = std::unique_ptr<T, Free>;

    /// Null without a display, with the thread's last error set. Writes nothing anywhere, except
    /// that xcb itself passes on what a server says that refuses this user.
    static std::unique_ptr<X11Display>
    open(std::chrono::milliseconds answerLimit = std::chrono::seconds(2));

    xcb_connection_t* connection() const { return m_connection.get(); }
    xcb_window_t root() const { return m_root; }
    xcb_atom_t atom(X11Name name) const { return m_atoms[static_cast<std::size_t>(name)]; }

    /// The answer to a request, as in `reply<xcb_query_tree_reply_t>(xcb_query_tree(...))`.
    template <typename Reply, typename Cookie> Owned<Reply> reply(Cookie cookie)
    {
        return Owned<Reply>(static_cast<Reply*>(await(cookie.sequence)));
    }

    /// A property of 32-bit values; empty when the window does not have it with this type.
    std::vector<std::uint32_t> numbers(xcb_window_t window, xcb_atom_t property, xcb_atom_t type);
    /// A property of text, in whatever encoding.
    std::string text(xcb_window_t window, xcb_atom_t property);

    /// Sends a message about a window to the window manager.
    void tellManager(xcb_window_t window, X11Name type, const std::array<std::uint32_t, 5>& data);
    /// Sends a message to the application that made the window.
    void tellApplication(xcb_window_t window, X11Name type);

    /// Sends what was requested.
    void flush();
    /// Sends what was requested and waits until the server has done it.
    void sync();
    /// The next event that is there; null without one, and when the connection has ended.
    Owned<xcb_generic_event_t> nextEvent();
    /// Sends what was requested and waits until something comes, or the time is over.
    void waitForInput(std::chrono::milliseconds limit);

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

    X11Display(Connection connection, int screen, std::chrono::milliseconds answerLimit);
    static Connection openConnection(int& screen, std::chrono::milliseconds limit);
    bool internNames();
    void* await(unsigned sequence);
    void send(xcb_window_t receiver, std::uint32_t mask, xcb_window_t window, X11Name type,
              const std::array<std::uint32_t, 5>& data);

    static constexpr std::size_t nameCount = static_cast<std::size_t>(X11Name::WmState) + 1;

    Connection m_connection;
    std::chrono::milliseconds m_answerLimit;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    std::array<xcb_atom_t, nameCount> m_atoms{};
    bool m_isSilent = false; // an answer did not come in time
};

} // namespace vlbase::platform

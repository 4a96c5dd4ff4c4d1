#pragma once

#include <functional>
#include <memory>

namespace vlbase::platform {

/// Sends the message "QuitApp" to the top-level windows of all other processes on the desktop,
/// and to the listeners of those that show none.
void broadcastQuit();

/// Hears the message "QuitApp" by a window that nobody sees.
///
/// Lives in one thread. On Windows that thread's message loop calls back; on Linux read() does,
/// which is to be called when the descriptor has something to read.
class QuitListener
{
public:
    explicit QuitListener(std::function<void()> heard);
    ~QuitListener();
    QuitListener(const QuitListener&) = delete;
    QuitListener& operator=(const QuitListener&) = delete;

    /// False without a display, and on Linux after its end.
    bool isListening() const;

    /// -1 where a message loop calls.
    int descriptor() const;
    void read();

private:
    struct Window;
    std::function<void()> m_heard;
    std::unique_ptr<Window> m_window;
};

} // namespace vlbase::platform

#include <VLBase/platform/quitbroadcast.h>

#include <windows.h>

namespace vlbase::platform {

namespace {

UINT quitMessage()
{
    static const UINT message = ::RegisterWindowMessageW(L"QuitApp");
    return message;
}

} // namespace

void broadcastQuit()
{
    DWORD recipients = BSM_APPLICATIONS;
    ::BroadcastSystemMessageW(BSF_IGNORECURRENTTASK | BSF_POSTMESSAGE | BSF_FORCEIFHUNG,
                              &recipients, quitMessage(), 0, 0);
}

/// A window of the system's own class, so that none has to be registered and outlive this
/// library. Hidden, but no mere message window, because those hear no broadcasts.
struct QuitListener::Window
{
    explicit Window(const std::function<void()>& heard)
        : handle(::CreateWindowExW(0, L"STATIC", L"QuitApp", WS_OVERLAPPED, 0, 0, 0, 0, nullptr,
                                   nullptr, nullptr, nullptr))
    {
        ::SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&heard));
        ::SetWindowLongPtrW(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&receive));
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { ::DestroyWindow(handle); }

    static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM wide, LPARAM data)
    {
        if (message != quitMessage())
            return ::DefWindowProcW(window, message, wide, data);
        const LONG_PTR heard = ::GetWindowLongPtrW(window, GWLP_USERDATA);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): so the system keeps it.
        (*reinterpret_cast<const std::function<void()>*>(heard))();
        return 0;
    }

    HWND handle;
};

QuitListener::QuitListener(std::function<void()> heard)
    : m_heard(std::move(heard))
    , m_window(std::make_unique<Window>(m_heard))
{
}

QuitListener::~QuitListener() = default;

bool QuitListener::isListening() const
{
    return m_window->handle != nullptr;
}

int QuitListener::descriptor() const
{
    return -1;
}

void QuitListener::read() {}

} // namespace vlbase::platform

#pragma once

namespace vlbase::platform {

/// Keeps Windows Sockets started, for callers that use them without starting them.
class WindowsSockets
{
public:
    WindowsSockets();
    WindowsSockets(const WindowsSockets& other);
    WindowsSockets& operator=(const WindowsSockets&) = default;
    ~WindowsSockets();

private:
    bool m_started = false;
};

} // namespace vlbase::platform

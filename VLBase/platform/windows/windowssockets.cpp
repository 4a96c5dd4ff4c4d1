#include "windowssockets.h"

#include <winsock2.h>

namespace vlbase::platform {

WindowsSockets::WindowsSockets()
{
    WSADATA data{};
    m_started = ::WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

// Starts and ends are counted, so every object has its own.
WindowsSockets::WindowsSockets(const WindowsSockets&)
    : WindowsSockets()
{
}

WindowsSockets::~WindowsSockets()
{
    if (m_started)
        ::WSACleanup();
}

} // namespace vlbase::platform

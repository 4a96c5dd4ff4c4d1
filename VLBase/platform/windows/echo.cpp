#include "windowsnetworkaccess.h"

#include <VLBase/platform/echo.h>

namespace vlbase::platform {

EchoAnswer sendEcho(const EchoRequest& request)
{
    // Never destroyed, because static destructors may still ping.
    static const WindowsNetworkAccess& access = *new WindowsNetworkAccess;
    return access.ping(request);
}

} // namespace vlbase::platform

#pragma once

#include <VLBase/vlbase_export.h>

class QHostAddress;

namespace QHostAddressHelpers {

/// Whether an address belongs to this machine: a loopback address (127.0.0.x or ::1) or one of
/// its network interfaces.
VLBASE_EXPORT bool isIpLocal(const QHostAddress& address);

} // namespace QHostAddressHelpers

#pragma once

#include <VLBase/vlbase_export.h>

class QHostAddress;

namespace QHostAddressHelpers {

/// Whether an address belongs to this machine: a loopback address (127.0.0.x or ::1) or one of
/// its network interfaces. An IPv4 address mapped into IPv6 (::ffff:127.0.0.1) is judged as what it
/// stands for.
VLBASE_EXPORT bool isIpLocal(const QHostAddress& address);

} // namespace QHostAddressHelpers

#pragma once

namespace vlbase::platform {

enum class SystemEnd { PowerOff, Restart };

/// Asks the system to end, two seconds later; whatever runs then has no say in it.
/// \return false, without the two seconds, when this process may not ask for it; false also when
///         the system does not begin to end.
bool endSystem(SystemEnd end);

} // namespace vlbase::platform

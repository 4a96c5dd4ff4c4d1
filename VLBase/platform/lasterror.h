#pragma once

#include <cstdint>

namespace vlbase::platform {

/// The calling thread's last error code: Windows' own there; elsewhere an errno value, in a slot
/// that only failing operations of this folder and setLastError() write.
std::uint32_t lastError();
void setLastError(std::uint32_t code);

/// What this library finds wrong without a call of the system having said it.
enum class Fault { InvalidArgument, TextTooLong, NotFound, NotPermitted, NoAnswer };

/// Sets the system's code for a fault.
void setLastError(Fault fault);

/// Sets the code with which the system says that it does not have an operation.
void setLastErrorNotSupported();

} // namespace vlbase::platform

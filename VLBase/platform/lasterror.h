#pragma once

#include <VLBase/vlbase_export.h>

#include <cstdint>

namespace vlbase::platform {

/// The calling thread's last error code: Windows' own there; elsewhere an errno value, in a slot
/// that only failing operations of this folder and setLastError() write.
VLBASE_EXPORT std::uint32_t lastError();
VLBASE_EXPORT void setLastError(std::uint32_t code);

/// What this library finds wrong without a call of the system having said it.
enum class Fault { InvalidArgument, TextTooLong, NotFound, NotPermitted, NoAnswer };

/// Sets the system's code for a fault.
VLBASE_EXPORT void setLastError(Fault fault);

/// Sets the code with which the system says that it does not have an operation.
void setLastErrorNotSupported();

} // namespace vlbase::platform

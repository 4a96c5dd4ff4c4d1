#pragma once

#include <VLBase/logging/internal/logattachment.h>
#include <VLBase/logging/openresult.h>

#include <memory>

namespace vlbase::logging {

/// Attaches to the shared log and counts one user of it, until the last copy of the pointer is
/// gone; null when that fails. All users of the process have one attachment.
std::shared_ptr<LogAttachment> openLog(int role, int bufferSize, int reserveBytes,
                                       OpenResult& result);

/// Whether the process is attached. The caller holds `attachmentMutex`.
bool isLogOpen();

} // namespace vlbase::logging

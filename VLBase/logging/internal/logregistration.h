#pragma once

#include <VLBase/logging/internal/logattachment.h>
#include <VLBase/platform/namedclaim.h>

#include <QtGlobal>

#include <memory>

namespace vlbase::logging {

/// How an attempt to open the shared log ended.
enum class OpenOutcome : int {
    Created, ///< this is the owner of a new log
    Joined,
    Busy,   ///< there is another owner
    Absent, ///< there is no log yet
    Failed
};

/// One counted user of the shared log, which all copies of an object have in common.
class LogRegistration
{
public:
    static std::shared_ptr<LogRegistration> open(int role, int bufferSize, int reserveBytes,
                                                 OpenOutcome& outcome);
    ~LogRegistration();
    LogRegistration(const LogRegistration&) = delete;
    LogRegistration& operator=(const LogRegistration&) = delete;

    LogAttachment& attachment() { return *m_attachment; }

    /// Whether any object is attached. The caller holds `attachmentMutex`.
    static bool isProcessAttached();

private:
    LogRegistration(Role role, std::shared_ptr<LogAttachment> attachment,
                    platform::NamedClaim claim);

    Role m_role;
    std::shared_ptr<LogAttachment> m_attachment;
    platform::NamedClaim m_ownerClaim;
    qint64 m_process;
};

} // namespace vlbase::logging

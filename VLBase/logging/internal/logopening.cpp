#include "logopening.h"

#include <VLBase/logging/internal/logobjects.h>
#include <VLBase/platform/namedclaim.h>
#include <VLBase/platform/openinglock.h>

#include <QCoreApplication>

#include <mutex>
#include <optional>
#include <utility>

namespace vlbase::logging {

using platform::NamedClaim;
using platform::OpeningLock;

namespace {

std::weak_ptr<LogAttachment>& processAttachment()
{
    static auto& attachment = *new std::weak_ptr<LogAttachment>;
    return attachment;
}

// An owner that is counted but has no claim has been killed, unless it is of another maker.
bool mayTakeOver(LogAttachment& attachment)
{
    return attachment.image().users(Role::Owner) < 1 || !NamedClaim::othersMayIgnore() ||
           (attachment.reserve() && attachment.reserve()->ownerHasClaim());
}

std::shared_ptr<LogAttachment> openOwner(int bufferSize, int reserveBytes, NamedClaim& claim,
                                         OpenResult& result)
{
    result = OpenResult::Busy;
    if (!claim.take(objectName(ownerObject)))
        return nullptr;
    bool absent = false;
    auto attachment = processAttachment().lock();
    if (!attachment)
        attachment = LogAttachment::join(absent);
    result = OpenResult::TookOver;
    if (!attachment && absent) {
        result = OpenResult::Created;
        attachment = LogAttachment::create(bufferSize);
    }
    if (!attachment) {
        result = OpenResult::Failed;
        return nullptr;
    }
    if (!mayTakeOver(*attachment)) {
        result = OpenResult::Busy;
        return nullptr;
    }
    if (!attachment->reserve()) {
        attachment->lock(); // for other objects of this process that are writing
        attachment->ensureReserve(reserveBytes);
        attachment->unlock();
    }
    attachment->image().setSoleOwner();
    if (LogReserve* const reserve = attachment->reserve())
        reserve->setOwnerHasClaim(true);
    return attachment;
}

std::shared_ptr<LogAttachment> openUser(Role role, OpenResult& result)
{
    bool absent = false;
    auto attachment = processAttachment().lock();
    if (!attachment)
        attachment = LogAttachment::join(absent);
    if (!attachment) {
        result = OpenResult::Failed;
        return nullptr;
    }
    attachment->image().addUser(role);
    result = OpenResult::TookOver;
    return attachment;
}

/// One counted user of the log.
class LogUser
{
public:
    LogUser(Role role, std::shared_ptr<LogAttachment> attachment, NamedClaim ownerClaim)
        : m_role(role)
        , m_attachment(std::move(attachment))
        , m_ownerClaim(std::move(ownerClaim))
        , m_process(QCoreApplication::applicationPid())
    {
    }
    ~LogUser();
    LogUser(const LogUser&) = delete;
    LogUser& operator=(const LogUser&) = delete;

    LogAttachment* log() const { return m_attachment.get(); }

private:
    Role m_role;
    std::shared_ptr<LogAttachment> m_attachment;
    NamedClaim m_ownerClaim;
    qint64 m_process;
};

LogUser::~LogUser()
{
    if (m_process != QCoreApplication::applicationPid())
        return; // a forked child, which was never counted
    m_attachment->lock();
    m_attachment->image().removeUser(m_role);
    m_attachment->unlock();

    // Not while the log's mutex is held: its waiters must never wait for somebody who waits for
    // the opening lock.
    const std::lock_guard guard(attachmentMutex());
    std::optional<OpeningLock> opening;
    if (m_role == Role::Owner || m_attachment.use_count() == 1)
        opening.emplace(objectName(openingObject));
    m_ownerClaim.release();
    m_attachment.reset();
}

} // namespace

std::shared_ptr<LogAttachment> openLog(int role, int bufferSize, int reserveBytes,
                                       OpenResult& result)
{
    result = OpenResult::Failed;
    if (role < static_cast<int>(Role::Owner) || role > static_cast<int>(Role::Reader))
        return nullptr;
    const auto kind = static_cast<Role>(role);
    const std::lock_guard guard(attachmentMutex());
    const bool isOwner = kind == Role::Owner;
    std::optional<OpeningLock> opening;
    if (isOwner || processAttachment().expired()) {
        opening.emplace(objectName(openingObject));
        if (!opening->isHeld())
            return nullptr;
    }
    NamedClaim claim;
    auto attachment =
        isOwner ? openOwner(bufferSize, reserveBytes, claim, result) : openUser(kind, result);
    if (!attachment)
        return nullptr;
    processAttachment() = attachment;
    const auto user = std::make_shared<LogUser>(kind, std::move(attachment), std::move(claim));
    return {user, user->log()};
}

bool isLogOpen()
{
    return !processAttachment().expired();
}

} // namespace vlbase::logging

#include "logregistration.h"

#include <VLBase/logging/internal/logobjects.h>
#include <VLBase/platform/openinglock.h>

#include <QCoreApplication>

#include <mutex>
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
                                         OpenOutcome& outcome)
{
    outcome = OpenOutcome::Busy;
    if (!claim.take(objectName(ownerObject)))
        return nullptr;
    bool absent = false;
    auto attachment = processAttachment().lock();
    if (!attachment)
        attachment = LogAttachment::join(absent);
    outcome = OpenOutcome::Joined;
    if (!attachment && absent) {
        outcome = OpenOutcome::Created;
        attachment = LogAttachment::create(bufferSize);
    }
    if (!attachment) {
        outcome = OpenOutcome::Failed;
        return nullptr;
    }
    if (!mayTakeOver(*attachment)) {
        outcome = OpenOutcome::Busy;
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

std::shared_ptr<LogAttachment> openUser(Role role, OpenOutcome& outcome)
{
    bool absent = false;
    auto attachment = processAttachment().lock();
    if (!attachment)
        attachment = LogAttachment::join(absent);
    if (!attachment) {
        outcome = absent ? OpenOutcome::Absent : OpenOutcome::Failed;
        return nullptr;
    }
    attachment->image().addUser(role);
    outcome = OpenOutcome::Joined;
    return attachment;
}

} // namespace

LogRegistration::LogRegistration(Role role, std::shared_ptr<LogAttachment> attachment,
                                 NamedClaim claim)
    : m_role(role)
    , m_attachment(std::move(attachment))
    , m_ownerClaim(std::move(claim))
    , m_process(QCoreApplication::applicationPid())
{
}

std::shared_ptr<LogRegistration> LogRegistration::open(int role, int bufferSize, int reserveBytes,
                                                       OpenOutcome& outcome)
{
    outcome = OpenOutcome::Failed;
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
        isOwner ? openOwner(bufferSize, reserveBytes, claim, outcome) : openUser(kind, outcome);
    if (!attachment)
        return nullptr;
    processAttachment() = attachment;
    return std::shared_ptr<LogRegistration>(
        new LogRegistration(kind, std::move(attachment), std::move(claim)));
}

LogRegistration::~LogRegistration()
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

bool LogRegistration::isProcessAttached()
{
    return !processAttachment().expired();
}

} // namespace vlbase::logging

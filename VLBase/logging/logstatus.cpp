#include "logstatus.h"

#include <VLBase/logging/internal/lineindex.h>
#include <VLBase/logging/internal/logimage.h>
#include <VLBase/logging/internal/logobjects.h>
#include <VLBase/logging/internal/logreserve.h>
#include <VLBase/platform/namedclaim.h>
#include <VLBase/platform/namedmapping.h>
#include <VLBase/platform/namedmutex.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace vlbase::logging {

using platform::NamedMapping;

namespace {

void readImage(const LogImage& image, LogStatus& status)
{
    status.bufferSize = image.bufferSize();
    status.writers = image.users(Role::Writer);
    status.owners = image.users(Role::Owner);
    status.readers = image.users(Role::Reader);
    status.fill[0] = image.fill(0);
    status.fill[1] = image.fill(1);
    status.nextIndex = image.index();
    const char* const name = image.fileName();
    status.fileName.assign(name, std::find(name, name + LogImage::fileNameSize, '\0'));
    status.acceptsDataBlocks = image.acceptsDataBlocks();
}

void readReserve(const LogImage& image, LogStatus& status)
{
    NamedMapping mapping;
    if (mapping.open(objectName(reserveObject), NamedMapping::Access::Glance) !=
            NamedMapping::Opened::Done ||
        !LogReserve::isReserve(mapping.data(), mapping.size()))
        return;
    const LogReserve reserve(mapping.data(), mapping.size(), image);
    status.hasReserve = true;
    status.linesNumbered = reserve.reached() - firstPosition;
    status.reserveBytes = reserve.staging().size();
    if (status.reserveBytes > 0)
        status.stagedBytes = reserve.staging().bytes();
}

} // namespace

namespace {

// What keeps looking like a log in the making is a damaged one.
NamedMapping::Opened openFinished(NamedMapping& mapping)
{
    using namespace std::chrono;
    const auto end = steady_clock::now() + milliseconds(200);
    for (;;) {
        mapping.close();
        const NamedMapping::Opened opened =
            mapping.open(objectName(bufferObject), NamedMapping::Access::Glance);
        if (opened != NamedMapping::Opened::Done ||
            !LogImage::isUnfinished(mapping.data(), mapping.size()) || steady_clock::now() >= end)
            return opened;
        std::this_thread::sleep_for(milliseconds(1));
    }
}

} // namespace

LogStatus peekLog()
{
    LogStatus status;
    NamedMapping mapping;
    const NamedMapping::Opened opened = openFinished(mapping);
    if (opened == NamedMapping::Opened::Absent)
        return status;
    const char* const defect = opened == NamedMapping::Opened::Refused
                                   ? "not shared memory of this user"
                                   : LogImage::defect(mapping.data(), mapping.size());
    if (defect) {
        status.presence = LogStatus::Presence::Refused;
        status.reason = defect;
        return status;
    }
    status.presence = LogStatus::Presence::Present;
    const LogImage image = LogImage::view(mapping.data(), mapping.size());
    readImage(image, status);
    readReserve(image, status);
    status.ownerAlive = platform::NamedClaim::isTaken(objectName(ownerObject));
    status.viewerAlive = platform::NamedClaim::isTaken(objectName(viewerObject));
    status.lockHeld = platform::NamedMutex::isHeld(objectName(mutexObject));
    return status;
}

} // namespace vlbase::logging

#include "logviewerclaim.h"

#include <VLBase/logging/internal/logobjects.h>

namespace vlbase::logging {

bool LogViewerClaim::take()
{
    return m_claim.take(objectName(viewerObject));
}

bool LogViewerClaim::isHeld() const
{
    return m_claim.isHeld();
}

void LogViewerClaim::release()
{
    m_claim.release();
}

bool LogViewerClaim::isTaken()
{
    return platform::NamedClaim::isTaken(objectName(viewerObject));
}

} // namespace vlbase::logging

#include "viewerclaim.h"

#include <VLBase/logging/internal/logobjects.h>
#include <VLBase/platform/namedclaim.h>

#include <utility>

namespace vlbase::logging {

class ViewerClaim::Claim : public platform::NamedClaim
{
};

ViewerClaim::ViewerClaim() = default;
ViewerClaim::~ViewerClaim() = default;
ViewerClaim::ViewerClaim(ViewerClaim&& other) noexcept = default;
ViewerClaim& ViewerClaim::operator=(ViewerClaim&& other) noexcept = default;

bool ViewerClaim::take()
{
    if (m_claim)
        return true;
    auto claim = std::make_unique<Claim>();
    if (!claim->take(objectName(viewerObject)))
        return false;
    m_claim = std::move(claim);
    return true;
}

} // namespace vlbase::logging

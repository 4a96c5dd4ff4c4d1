#pragma once

#include "tools/vlbase/command.h"

namespace vlbase::tool::geometry {

/// Shows stored window geometries.
Command geometryCommand();

} // namespace vlbase::tool::geometry

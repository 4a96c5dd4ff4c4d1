#pragma once

#include "tools/vlbase/command.h"

namespace vlbase::tool::coord {

Command coordCommand();

} // namespace vlbase::tool::coord

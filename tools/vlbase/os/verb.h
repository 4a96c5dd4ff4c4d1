#pragma once

#include "tools/vlbase/command.h"

/// What the operating-system service sees.
namespace vlbase::tool::os {

Command osCommand();

} // namespace vlbase::tool::os

#pragma once

#include "tools/vlbase/command.h"

/// The verbs of the shared log.
namespace vlbase::tool::log {

Command ownCommand();
Command tailCommand();
Command sendCommand();
Command statusCommand();
Command showCommand();
Command statsCommand();

} // namespace vlbase::tool::log

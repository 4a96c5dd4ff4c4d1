#pragma once

#include "tools/vlbase/command.h"

/// The verbs of the built-in band plan.
namespace vlbase::tool::band {

Command listCommand();
Command showCommand();
Command channelCommand();
Command findCommand();
Command plotCommand();

} // namespace vlbase::tool::band

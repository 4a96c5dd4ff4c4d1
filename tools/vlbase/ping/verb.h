#pragma once

#include "tools/vlbase/command.h"

/// Whether another machine answers.
namespace vlbase::tool::ping {

Command pingCommand();

} // namespace vlbase::tool::ping

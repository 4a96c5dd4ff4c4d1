#pragma once

#include "tools/vlbase/command.h"

/// Time stamps.
namespace vlbase::tool::time {

Command timeCommand();

} // namespace vlbase::tool::time

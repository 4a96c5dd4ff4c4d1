#pragma once

#include "tools/vlbase/command.h"
#include "tools/vlbase/commandline.h"

#include <VLBase/logging/logstatus.h>

namespace vlbase::tool::log {

/// The option that all verbs of the log have, and what it does.
Option instanceOption();

/// Selects the log that the line names; a bad name is a fault of the line.
void selectInstance(CommandLine& line);

/// Why there is no owner: "the log has no owner", or what has the log's name instead.
QString absenceText(const logging::LogStatus& status);

/// "vlbase log own", with the instance that is selected: for messages that tell what to start.
QString ownCommandLine();

} // namespace vlbase::tool::log

#include "command.h"
#include "tools/vlbase/coord/verb.h"
#include "tools/vlbase/log/verbs.h"

namespace vlbase::tool {

const std::vector<Command>& allCommands()
{
    static const std::vector<Command> commands = {
        log::ownCommand(),    log::tailCommand(),    log::sendCommand(),
        log::statusCommand(), coord::coordCommand(),
    };
    return commands;
}

} // namespace vlbase::tool

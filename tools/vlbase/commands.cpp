#include "command.h"
#include "tools/vlbase/band/verbs.h"
#include "tools/vlbase/coord/verb.h"
#include "tools/vlbase/geometry/verb.h"
#include "tools/vlbase/log/verbs.h"
#include "tools/vlbase/os/verb.h"
#include "tools/vlbase/ping/verb.h"
#include "tools/vlbase/time/verbs.h"

namespace vlbase::tool {

const std::vector<Command>& allCommands()
{
    static const std::vector<Command> commands = {
        log::ownCommand(),   log::tailCommand(),          log::showCommand(),
        log::statsCommand(), log::sendCommand(),          log::statusCommand(),
        band::listCommand(), band::showCommand(),         band::channelCommand(),
        band::findCommand(), band::plotCommand(),         coord::coordCommand(),
        time::timeCommand(), geometry::geometryCommand(), os::osCommand(),
        ping::pingCommand(),
    };
    return commands;
}

} // namespace vlbase::tool

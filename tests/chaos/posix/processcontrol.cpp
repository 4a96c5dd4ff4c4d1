#include "../processcontrol.h"

#include <csignal>

namespace processcontrol {

bool suspend(qint64 processId)
{
    return kill(static_cast<pid_t>(processId), SIGSTOP) == 0;
}

bool resume(qint64 processId)
{
    return kill(static_cast<pid_t>(processId), SIGCONT) == 0;
}

} // namespace processcontrol

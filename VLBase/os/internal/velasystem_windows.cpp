// The windows of other processes, and the wish that they end.

#include "velasystem.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/processes.h>
#include <VLBase/platform/quitbroadcast.h>
#include <VLBase/platform/toplevelwindows.h>

namespace platform = vlbase::platform;

bool VelaSystem::GetWindowPositions(int& left, int& top, int& right, int& bottom, int& showCmd,
                                    int processId)
{
    const auto placement = platform::placementOf(processId);
    if (!placement)
        return false;
    if (placement->normal.top == 0) { // counts as no window
        platform::setLastError(platform::Fault::NotFound);
        return false;
    }
    left = placement->normal.left;
    top = placement->normal.top;
    right = placement->normal.right;
    bottom = placement->normal.bottom;
    showCmd = placement->showCommand;
    return true;
}

void VelaSystem::SetWindowPositions(int left, int top, int right, int bottom, int showCmd,
                                    int processId)
{
    platform::place(processId, {{left, top, right, bottom}, showCmd});
}

bool VelaSystem::SetWindowToForeground(HWND window)
{
    return platform::bringToForeground(reinterpret_cast<platform::WindowHandle>(window));
}

bool VelaSystem::SetWindowToForeground(const QString& executableName)
{
    constexpr std::size_t room = 1024;
    const std::string wanted = executableName.toStdString();
    for (const int processId : platform::processIds(room)) {
        const std::string program = platform::programName(processId);
        if (!program.empty() && platform::isSameProgram(program, wanted))
            return platform::bringToForeground(platform::mainWindowOf(processId));
    }
    platform::setLastError(platform::Fault::NotFound);
    return false;
}

bool VelaSystem::SetWindowToForeground(PROCESS_INFORMATION* process)
{
    if (process == nullptr) {
        platform::setLastError(platform::Fault::InvalidArgument);
        return false;
    }
    const auto window = platform::mainWindowOf(platform::processIdOf(*process));
    return window != 0 && platform::bringToForeground(window);
}

void VelaSystem::BroadcastTerminationMessage()
{
    platform::broadcastQuit();
}

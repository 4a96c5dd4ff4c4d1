// Operations that are not offered on any system yet. Each one answers its failure and leaves the
// system's code for "not supported" behind, so that no caller takes it for done.

#include "velasystem.h"

#include <VLBase/platform/lasterror.h>

namespace {

template <typename Answer> Answer notOffered(Answer failure)
{
    vlbase::platform::setLastErrorNotSupported();
    return failure;
}

} // namespace

qint64 VelaSystem::ShellExec(const QString&)
{
    return notOffered(qint64{0});
}

int VelaSystem::SystemSound(int)
{
    return notOffered(-1);
}

void VelaSystem::Play(void*)
{
    vlbase::platform::setLastErrorNotSupported();
}

bool VelaSystem::GetWindowPositions(int&, int&, int&, int&, int&, int)
{
    return notOffered(false);
}

void VelaSystem::SetWindowPositions(int, int, int, int, int, int)
{
    vlbase::platform::setLastErrorNotSupported();
}

QIcon VelaSystem::GetIconById(int)
{
    return notOffered(QIcon());
}

bool VelaSystem::SetWindowToForeground(HWND)
{
    return notOffered(false);
}

bool VelaSystem::SetWindowToForeground(const QString&)
{
    return notOffered(false);
}

bool VelaSystem::SetWindowToForeground(PROCESS_INFORMATION*)
{
    return notOffered(false);
}

void VelaSystem::BroadcastTerminationMessage()
{
    vlbase::platform::setLastErrorNotSupported();
}

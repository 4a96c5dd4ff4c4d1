#include "velasystem.h"

#include <VLBase/platform/dynamiclibrary.h>
#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/thread.h>

namespace platform = vlbase::platform;

VelaSystem::VelaSystem()
{
    setAppThread(platform::currentThreadId());
}

quint64 VelaSystem::LoadLibraryDll(const QString& path)
{
    return platform::loadLibrary(path.toStdString());
}

bool VelaSystem::FreeLibrary(quint64 module)
{
    return platform::freeLibrary(module);
}

IVelaOS::ProcAddress VelaSystem::GetProcAddress(quint64 module, const QString& name)
{
    return platform::findFunction(module, name.toStdString());
}

quint32 VelaSystem::GetLastError()
{
    return platform::lastError();
}

void VelaSystem::SetLastError(quint32 code)
{
    platform::setLastError(code);
}

int VelaSystem::GetCurrentThreadId()
{
    return platform::currentThreadId();
}

void VelaSystem::SetAppThreadId()
{
    setAppThread(platform::currentThreadId());
}

#include "velasystem.h"

#include <VLBase/platform/dynamiclibrary.h>
#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/networkadapters.h>
#include <VLBase/platform/processes.h>

namespace platform = vlbase::platform;

// What VelaOS asks the one service stands here, so that VelaOS itself does not know it.
IVelaOS& VelaOS::Create()
{
    // Never destroyed, because static destructors may still call it.
    static VelaSystem& service = *new VelaSystem;
    return service;
}

IVelaOS& VelaOS::Get()
{
    return Create();
}

IVelaOS& VelaOS::GetInstance()
{
    return Create();
}

bool VelaOS::IsAppThread()
{
    return Get().GetCurrentThreadId() == m_appThreadId;
}

bool VelaOS::IsAppThreadOrNoAppThreadExists()
{
    return IsAppThread() || m_appThreadId == 0;
}

VelaSystem::VelaSystem()
{
    setAppThread(platform::currentThreadId());
    platform::startNetwork();
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

#include "velasystem.h"

#include <VLBase/platform/dynamiclibrary.h>
#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/process.h>
#include <VLBase/platform/thread.h>

#include <cstdarg>
#include <cstdlib>

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

void VelaSystem::AlertableSleep(int milliseconds)
{
    if (milliseconds >= -1)
        platform::alertableSleep(milliseconds);
}

int VelaSystem::Exec(const char* first, ...)
{
    if (first == nullptr)
        return -1;
    std::string command(first);
    va_list arguments;
    va_start(arguments, first);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): does not see va_start() in C++.
    while (const char* argument = va_arg(arguments, const char*))
        command.append(1, ' ').append(argument);
    va_end(arguments);
    return std::system(command.c_str());
}

bool VelaSystem::TerminateHiddenLegacyProgram(int processId)
{
    return platform::terminateProcess(processId);
}

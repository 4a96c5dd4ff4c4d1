// Programs and their processes, this one among them, and the end of the system.

#include "velasystem.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/machine.h>
#include <VLBase/platform/processes.h>

#include <cstdarg>
#include <cstdlib>

namespace platform = vlbase::platform;

namespace {

std::string toUtf8(const std::wstring& text)
{
    return QString::fromStdWString(text).toStdString();
}

std::wstring orEmpty(const wchar_t* text)
{
    return text == nullptr ? std::wstring() : text;
}

} // namespace

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

bool VelaSystem::StartHiddenLegacyProgram(const wchar_t* program, const wchar_t* arguments,
                                          int& processId)
{
    constexpr std::size_t commandLineRoom = 4096; // with the blank between and the end
    const std::wstring name = orEmpty(program);
    const std::wstring rest = orEmpty(arguments);
    if (name.size() + rest.size() + 2 > commandLineRoom) {
        platform::setLastError(platform::Fault::TextTooLong);
        return false;
    }
    const auto started = platform::startHiddenProgram(toUtf8(name), toUtf8(rest));
    if (started)
        processId = *started;
    return started.has_value();
}

bool VelaSystem::TerminateHiddenLegacyProgram(int processId)
{
    return platform::terminateProcess(processId);
}

bool VelaSystem::IsProcessIdle(int processId)
{
    return platform::isProcessIdle(processId);
}

int VelaSystem::FindProcess(const wchar_t* name)
{
    constexpr std::size_t room = 1000;
    const std::string wanted = toUtf8(orEmpty(name));
    for (const int processId : platform::processIds(room)) {
        const std::string program = platform::programName(processId);
        if (!program.empty() && program.find(wanted) != std::string::npos)
            return processId;
    }
    platform::setLastError(platform::Fault::NotFound);
    return -1;
}

void VelaSystem::SetPriorityHigh()
{
    platform::raisePriority();
}

void VelaSystem::AlertableSleep(int milliseconds)
{
    if (milliseconds >= -1)
        platform::alertableSleep(milliseconds);
}

bool VelaSystem::ShutdownOS()
{
    return platform::endSystem(platform::SystemEnd::PowerOff);
}

bool VelaSystem::RebootOS()
{
    return platform::endSystem(platform::SystemEnd::Restart);
}

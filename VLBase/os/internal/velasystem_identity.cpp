// Who and where we are: names, directories, environment, unique identifiers.

#include "velasystem.h"

#include <VLBase/platform/machine.h>

#include <QByteArray>

#include <array>
#include <cstdio>

namespace platform = vlbase::platform;

namespace {

std::wstring toWide(const std::string& utf8)
{
    return QString::fromStdString(utf8).toStdWString();
}

} // namespace

std::wstring VelaSystem::GetWorkStationName()
{
    std::wstring name = cachedWorkStationName();
    if (name.empty()) {
        name = toWide(platform::computerName());
        setCachedWorkStationName(name);
    }
    return name;
}

std::wstring VelaSystem::GetUserLoginName()
{
    return toWide(platform::loginName());
}

std::wstring VelaSystem::GetUserSID(const std::wstring& account)
{
    return toWide(platform::securityIdentifier(QString::fromStdWString(account).toStdString()));
}

QString VelaSystem::GetSystemPath()
{
    return QString::fromStdString(platform::systemDirectory());
}

std::wstring VelaSystem::GetTempDir()
{
    return toWide(platform::temporaryDirectory());
}

std::wstring VelaSystem::GetUserDir()
{
    return qEnvironmentVariable(platform::userDirectoryVariable()).toStdWString();
}

const char* VelaSystem::GetEnvironmentVar(const char* name)
{
    // Qt's functions, because they are safe against a qputenv() of another thread.
    if (name != nullptr && qEnvironmentVariableIsSet(name))
        m_environmentValue = qgetenv(name).toStdString();
    else if (m_environmentValue)
        m_environmentValue->clear();
    return m_environmentValue ? m_environmentValue->c_str() : nullptr;
}

char* VelaSystem::CreateUniqueIdAsString()
{
    static std::array<char, 37> text{};
    const auto id = platform::createUniqueId();
    if (!id) {
        text[0] = '\0';
        return text.data();
    }
    const auto& rest = id->data4;
    std::snprintf(text.data(), text.size(), "%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                  static_cast<unsigned long>(id->data1), id->data2, id->data3, rest[0], rest[1],
                  rest[2], rest[3], rest[4], rest[5], rest[6], rest[7]);
    return text.data();
}

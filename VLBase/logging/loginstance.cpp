#include "loginstance.h"

#include <VLBase/logging/internal/logobjects.h>
#include <VLBase/logging/internal/logopening.h>

#include <algorithm>
#include <string>

namespace vlbase::logging {

namespace {

// Never destroyed: a tracer may be among the last objects of the process.
std::string& instanceName()
{
    static auto& name = *new std::string;
    return name;
}

std::mutex& instanceMutex()
{
    static auto& mutex = *new std::mutex;
    return mutex;
}

bool isNameCharacter(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= u'a' && code <= u'z') || (code >= u'A' && code <= u'Z') ||
           (code >= u'0' && code <= u'9') || code == u'-' || code == u'_';
}

} // namespace

std::mutex& attachmentMutex()
{
    static auto& mutex = *new std::mutex;
    return mutex;
}

std::string objectName(const char* object)
{
    const std::lock_guard guard(instanceMutex());
    std::string name = object;
    if (!instanceName().empty())
        name += "." + instanceName();
    return name;
}

} // namespace vlbase::logging

using namespace vlbase::logging;

bool setLogInstance(const QString& name)
{
    constexpr qsizetype maximumLength = 64;
    if (name.size() > maximumLength || !std::all_of(name.begin(), name.end(), isNameCharacter))
        return false;
    const std::lock_guard attachmentGuard(attachmentMutex());
    if (isLogOpen())
        return false;
    const std::lock_guard guard(instanceMutex());
    instanceName() = name.toStdString();
    return true;
}

QString logInstance()
{
    const std::lock_guard guard(instanceMutex());
    return QString::fromStdString(instanceName());
}

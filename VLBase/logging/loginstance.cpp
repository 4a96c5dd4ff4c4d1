#include "loginstance.h"

#include <VLBase/logging/internal/logobjects.h>
#include <VLBase/logging/internal/logopening.h>

#include <algorithm>

using namespace vlbase::logging;

namespace {

bool isNameCharacter(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= u'a' && code <= u'z') || (code >= u'A' && code <= u'Z') ||
           (code >= u'0' && code <= u'9') || code == u'-' || code == u'_';
}

} // namespace

bool setLogInstance(const QString& name)
{
    constexpr qsizetype maximumLength = 64;
    if (name.size() > maximumLength || !std::all_of(name.begin(), name.end(), isNameCharacter))
        return false;
    const std::lock_guard attachmentGuard(attachmentMutex());
    if (isLogOpen())
        return false;
    setInstanceName(name.toStdString());
    return true;
}

QString logInstance()
{
    return QString::fromStdString(instanceName());
}

#include "instance.h"

#include <VLBase/logging/loginstance.h>

namespace vlbase::tool::log {
namespace {

const QString optionName = QStringLiteral("instance");

} // namespace

Option instanceOption()
{
    return {optionName, QStringLiteral("NAME"),
            QStringLiteral("Takes part in a separate log of this name, for tests and "
                           "experiments: 1 to 64 letters, digits, '-' and '_'. Default: the "
                           "common log of this user.")};
}

void selectInstance(CommandLine& line)
{
    if (!line.isSet(optionName))
        return;
    const QString name = line.value(optionName);
    if (name.isEmpty() || !setLogInstance(name))
        line.addFault(QStringLiteral("--instance: '%1' is no name of 1 to 64 letters, digits, "
                                     "'-' and '_'")
                          .arg(name));
}

QString absenceText(const logging::LogStatus& status)
{
    if (status.presence != logging::LogStatus::Presence::Refused)
        return QStringLiteral("the log has no owner");
    return QStringLiteral("what has the log's name is no log (%1)")
        .arg(QString::fromStdString(status.reason));
}

QString ownCommandLine()
{
    const QString name = logInstance();
    return name.isEmpty() ? QStringLiteral("vlbase log own")
                          : QStringLiteral("vlbase log own --instance %1").arg(name);
}

} // namespace vlbase::tool::log

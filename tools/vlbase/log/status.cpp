#include "instance.h"
#include "tools/jsontext.h"
#include "tools/vlbase/bytecount.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logstatus.h>

#include <QJsonObject>

namespace vlbase::tool::log {
namespace {

using logging::LogStatus;

QString row(const QString& title, const QString& content)
{
    return QStringLiteral("%1  %2\n").arg(title, -14).arg(content);
}

QString yesNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

QString fillText(std::int32_t fill, std::int32_t size)
{
    const int percent = size > 0 ? static_cast<int>(std::int64_t{100} * fill / size) : 0;
    return QStringLiteral("%1 of %2 (%3 %)")
        .arg(byteCountText(fill), byteCountText(size))
        .arg(percent);
}

QString ownerText(const LogStatus& status)
{
    if (status.hasOwner())
        return status.ownerAlive
                   ? QStringLiteral("alive")
                   : QStringLiteral("attached (of another program, not to be tested)");
    return status.owners > 0 ? QStringLiteral("none; the last one was killed")
                             : QStringLiteral("none");
}

QString logName()
{
    return logInstance().isEmpty() ? QStringLiteral("the common log of this user")
                                   : QStringLiteral("instance '%1'").arg(logInstance());
}

QString reserveText(const LogStatus& status)
{
    if (status.reserveBytes == 0)
        return QStringLiteral("none; lines that wait for the disk are lost with a killed owner");
    return QStringLiteral("%1 of %2 wait for the disk")
        .arg(byteCountText(static_cast<std::int64_t>(status.stagedBytes)),
             byteCountText(static_cast<std::int64_t>(status.reserveBytes)));
}

QString asText(const LogStatus& status)
{
    QString text = row(QStringLiteral("log"), logName());
    text += row(QStringLiteral("owner"), ownerText(status));
    text += row(QStringLiteral("file"), status.fileName.empty()
                                            ? QStringLiteral("-")
                                            : QString::fromStdString(status.fileName));
    text += row(QStringLiteral("users"),
                QStringLiteral("%1 writers, %2 readers%3")
                    .arg(status.writers)
                    .arg(status.readers)
                    .arg(status.viewerAlive ? QStringLiteral(", live view open") : QString()));
    text += row(QStringLiteral("for the file"), fillText(status.fill[1], status.bufferSize));
    text += row(QStringLiteral("for viewers"), fillText(status.fill[0], status.bufferSize));
    text += row(QStringLiteral("reserve"), reserveText(status));
    if (status.hasReserve)
        text += row(QStringLiteral("lines so far"), QString::number(status.linesNumbered));
    text += row(QStringLiteral("next number"), QString::number(status.nextIndex));
    text += row(QStringLiteral("data blocks"), yesNo(status.acceptsDataBlocks));
    return text;
}

QString asJson(const LogStatus& status)
{
    QJsonObject object;
    const bool isPresent = status.presence == LogStatus::Presence::Present;
    object[QStringLiteral("instance")] = logInstance();
    object[QStringLiteral("present")] = isPresent;
    object[QStringLiteral("owner")] = status.hasOwner();
    if (status.presence == LogStatus::Presence::Refused)
        object[QStringLiteral("reason")] = QString::fromStdString(status.reason);
    if (isPresent) {
        object[QStringLiteral("ownerAlive")] = status.ownerAlive;
        object[QStringLiteral("file")] = QString::fromStdString(status.fileName);
        object[QStringLiteral("owners")] = status.owners;
        object[QStringLiteral("writers")] = status.writers;
        object[QStringLiteral("readers")] = status.readers;
        object[QStringLiteral("viewerAlive")] = status.viewerAlive;
        object[QStringLiteral("bufferSize")] = status.bufferSize;
        object[QStringLiteral("fillForFile")] = status.fill[1];
        object[QStringLiteral("fillForViewers")] = status.fill[0];
        object[QStringLiteral("hasReserve")] = status.reserveBytes > 0;
        object[QStringLiteral("reserveBytes")] = static_cast<qint64>(status.reserveBytes);
        object[QStringLiteral("stagedBytes")] = static_cast<qint64>(status.stagedBytes);
        object[QStringLiteral("linesNumbered")] = static_cast<qint64>(status.linesNumbered);
        object[QStringLiteral("nextIndex")] = status.nextIndex;
        object[QStringLiteral("acceptsDataBlocks")] = status.acceptsDataBlocks;
        object[QStringLiteral("lockHeld")] = status.lockHeld;
    }
    return jsonText(object);
}

int run(CommandLine& line)
{
    selectInstance(line);
    if (!line.positional().isEmpty())
        line.addFault(QStringLiteral("'%1' is not an option").arg(line.positional().constFirst()));
    if (line.hasFault())
        return line.tellFault();

    const LogStatus status = logging::peekLog();
    const int result = status.hasOwner() ? Success : NoOwner;
    if (line.isSet(QStringLiteral("json")))
        return print(asJson(status)) ? result : Failure;
    if (status.presence == LogStatus::Presence::Present)
        return print(asText(status)) ? result : Failure;
    if (status.presence == LogStatus::Presence::Refused)
        line.tell(absenceText(status));
    else
        line.tell(
            QStringLiteral("nobody takes part in the log; '%1' starts it").arg(ownCommandLine()));
    return NoOwner;
}

} // namespace

Command statusCommand()
{
    Command command;
    command.group = QStringLiteral("log");
    command.verb = QStringLiteral("status");
    command.summary = QStringLiteral("tells who takes part and how full the buffers are");
    command.usage = QStringLiteral("[OPTION...]");
    command.about = QStringLiteral(
        "Looks at the shared log from outside, without a lock and without joining it: its owner "
        "and file, who takes part, and how full both halves of the buffer are. Counts of users "
        "include killed ones.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Tells it as a JSON object.")},
        instanceOption(),
    };
    command.exitStatuses = {
        {QStringLiteral("3"), QStringLiteral("the log has no owner")},
    };
    command.examples = {
        {QStringLiteral("start an owner only when there is none"),
         QStringLiteral("vlbase log status || vlbase log own &")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::log

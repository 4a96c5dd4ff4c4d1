#include "planpicture.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <QSaveFile>

namespace vlbase::tool::band {
namespace {

/// The file is there whole or not at all.
bool writeFile(CommandLine& line, const QString& name, const QByteArray& content)
{
    QSaveFile file(name);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit())
        return true;
    line.tell(QStringLiteral("cannot write '%1': %2").arg(name, file.errorString()));
    return false;
}

int run(CommandLine& line)
{
    if (!line.positional().isEmpty())
        line.addFault(QStringLiteral("'%1' is not an option; -o names the file")
                          .arg(line.positional().constFirst()));
    if (line.hasFault())
        return line.tellFault();

    const QString picture = planPicture();
    const QString name = line.value(QStringLiteral("o"));
    const bool isDone =
        name.isEmpty() || name == u"-" ? print(picture) : writeFile(line, name, picture.toUtf8());
    return isDone ? Success : Failure;
}

} // namespace

Command plotCommand()
{
    Command command;
    command.group = QStringLiteral("band");
    command.verb = QStringLiteral("plot");
    command.summary = QStringLiteral("draws the band plan as a picture");
    command.usage = QStringLiteral("[-o FILE]");
    command.about = QStringLiteral(
        "Draws all bands with their channels, uplinks and downlinks, as an SVG picture that every "
        "browser shows. There each channel tells its number and frequency under the pointer.");
    command.options = {
        {QStringLiteral("o"), QStringLiteral("FILE"),
         QStringLiteral("Where to write the picture; standard output without it.")},
    };
    command.examples = {
        {QStringLiteral("a picture to look at"), QStringLiteral("vlbase band plot -o plan.svg")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::band

#include "verb.h"

#include "geometrysearch.h"
#include "geometrytext.h"
#include "tools/jsontext.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"

#include <QFile>
#include <QJsonArray>

#include <algorithm>

namespace vlbase::tool::geometry {
namespace {

/// Digits typed with blanks between them come as several arguments.
bool areDigits(const QStringList& arguments)
{
    return std::all_of(arguments.cbegin(), arguments.cend(), [](const QString& argument) {
        return isHexText(argument) && !QFile::exists(argument);
    });
}

bool collect(CommandLine& line, std::vector<StoredGeometry>& found)
{
    const QStringList arguments = line.positional();
    if (areDigits(arguments)) {
        const QByteArray record = QByteArray::fromHex(arguments.join(u' ').toLatin1());
        if (!record.startsWith("\x01\xd9\xd0\xcb")) {
            line.tell(QStringLiteral("these digits are no window geometry: one begins with "
                                     "01d9d0cb"));
            return false;
        }
        found.push_back({QString(), record});
        return true;
    }
    bool isWell = true;
    for (const QString& fileName : arguments) {
        const std::size_t before = found.size();
        QString errorText;
        if (!findInFile(fileName, found, errorText)) {
            line.tell(QStringLiteral("cannot read '%1': %2").arg(fileName, errorText));
            isWell = false;
        } else if (found.size() == before) {
            line.tell(QStringLiteral("there is no window geometry in '%1'").arg(fileName));
            isWell = false;
        }
    }
    return isWell;
}

bool show(const std::vector<StoredGeometry>& found, bool asJsonArray)
{
    if (asJsonArray) {
        QJsonArray array;
        for (const StoredGeometry& geometry : found)
            array.append(asJson(geometry));
        return print(jsonText(array));
    }
    QStringList texts;
    for (const StoredGeometry& geometry : found)
        texts.append(asText(geometry));
    return print(texts.join(u'\n'));
}

int run(CommandLine& line)
{
    if (line.positional().isEmpty())
        line.addFault(QStringLiteral("neither digits nor a file are named"));
    if (line.hasFault())
        return line.tellFault();
    std::vector<StoredGeometry> found;
    const bool isWell = collect(line, found);
    const bool isShown = found.empty() || show(found, line.isSet(QStringLiteral("json")));
    return isWell && isShown ? Success : Failure;
}

} // namespace

Command geometryCommand()
{
    Command command;
    command.group = QStringLiteral("geometry");
    command.summary = QStringLiteral("shows where a stored window was");
    command.usage = QStringLiteral("[OPTION...] HEX|FILE...");
    command.about = QStringLiteral(
        "Shows the window geometry that a widget saved: its rectangles with and without the frame, "
        "the screen, and whether it was maximized or full screen. It is given as hexadecimal "
        "digits, with blanks or without, or as a file: a settings file (INI format, each geometry "
        "is shown with its key), digits in a text, or the record itself.\n"
        "Records of major version 1 are read. Those of today's widgets have a later one, which is "
        "told instead.");
    command.options = {
        {QStringLiteral("json"), {}, QStringLiteral("Shows an array of JSON objects.")},
    };
    command.examples = {
        {QStringLiteral("where did the program leave its windows?"),
         QStringLiteral("vlbase geometry ~/.config/Company/Receiver.conf")},
        {QStringLiteral("look at digits from somewhere else"),
         QStringLiteral("vlbase geometry 01d9d0cb 0001 0000 00000060 00000038")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::geometry

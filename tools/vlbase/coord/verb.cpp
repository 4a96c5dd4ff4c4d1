#include "verb.h"

#include "conversion.h"
#include "formatkey.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/suggestion.h"

namespace vlbase::tool::coord {
namespace {

std::optional<CoordFormat> formatOf(CommandLine& line, const QString& word)
{
    const auto format = formatOfKey(word);
    if (!format) {
        line.addFault(QStringLiteral("unknown format '%1'.%2 There are: %3.")
                          .arg(word, didYouMean(word, formatKeys()),
                               formatKeys().join(QStringLiteral(", "))));
    }
    return format;
}

std::vector<CoordFormat> targetFormats(CommandLine& line)
{
    const QStringList words = line.list(QStringLiteral("to"));
    if (words.isEmpty() || words.contains(QStringLiteral("all")))
        return {allFormats.begin(), allFormats.end()};
    std::vector<CoordFormat> formats;
    for (const QString& word : words) {
        if (const auto format = formatOf(line, word))
            formats.push_back(*format);
    }
    return formats;
}

int run(CommandLine& line)
{
    Task task;
    if (line.isSet(QStringLiteral("from")))
        task.from = formatOf(line, line.value(QStringLiteral("from")));
    task.to = targetFormats(line);
    if (line.isSet(QStringLiteral("csv")))
        task.form = OutputForm::Csv;
    if (line.isSet(QStringLiteral("json")))
        task.form = OutputForm::Json;
    if (line.isSet(QStringLiteral("csv")) && line.isSet(QStringLiteral("json")))
        line.addFault(QStringLiteral("--csv and --json exclude each other."));

    const QStringList texts = line.positional();
    QString path = line.value(QStringLiteral("file"));
    if (path.isEmpty() && texts == QStringList{QStringLiteral("-")})
        path = QStringLiteral("-");
    else if (!path.isEmpty() && !texts.isEmpty())
        line.addFault(QStringLiteral("either TEXT or --file, not both."));
    else if (path.isEmpty() && texts.isEmpty())
        line.addFault(QStringLiteral("which position? A text, '-' or --file is needed."));
    if (line.hasFault())
        return line.tellFault();
    return path.isEmpty() ? convertTexts(texts, task, line) : convertFile(path, task, line);
}

} // namespace

Command coordCommand()
{
    Command command;
    command.group = QStringLiteral("coord");
    command.summary = QStringLiteral("converts positions between the ways to write them");
    command.usage = QStringLiteral("[OPTION...] TEXT...\n       vlbase coord [OPTION...] -");
    command.about =
        QStringLiteral(
            "Converts positions on WGS 84. The format of a text is recognised: decimal degrees, "
            "degrees with minutes and seconds, UTM, MGRS, RT90 or a Maidenhead locator, as people "
            "write them. Where a text could mean two positions, standard error says which was "
            "taken. "
            "With '-' or --file each line is a position; one that is none is told with its number, "
            "and the rest goes on.\n"
            "The formats: %1.")
            .arg(formatKeys().join(QStringLiteral(", ")));
    command.options = {
        {QStringLiteral("from"), QStringLiteral("FORMAT"),
         QStringLiteral("Reads texts of this format only.")},
        {QStringLiteral("to"), QStringLiteral("FORMAT,..."),
         QStringLiteral("Writes these formats; 'all', which is also the default.")},
        {QStringLiteral("file"), QStringLiteral("PATH"),
         QStringLiteral("Reads the lines of a file.")},
        {QStringLiteral("csv"), {}, QStringLiteral("Writes comma-separated values with a header.")},
        {QStringLiteral("json"), {}, QStringLiteral("Writes one JSON object per position.")},
    };
    command.examples = {
        {QStringLiteral("one position in every format"),
         QStringLiteral("vlbase coord 59.3293 18.0686")},
        {QStringLiteral("what a locator stands for"),
         QStringLiteral("vlbase coord JO89xi --to decimal,mgrs")},
        {QStringLiteral("a list of MGRS references as CSV"),
         QStringLiteral("vlbase coord --file sites.txt --from mgrs --to decimal --csv")},
    };
    command.hasNegativeNumbers = true;
    command.run = run;
    return command;
}

} // namespace vlbase::tool::coord

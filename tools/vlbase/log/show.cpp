#include "logfiles.h"
#include "tools/logreading/lineexport.h"
#include "tools/logreading/merge.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"
#include "verbs.h"

#include <QSaveFile>

#include <optional>

namespace vlbase::tool::log {
namespace {

using logreading::ExportFormat;

constexpr std::size_t bytesAtOnce = 256 * 1024;

ExportFormat readFormat(CommandLine& line)
{
    const bool isJson = line.isSet(QStringLiteral("json"));
    const bool isCsv = line.isSet(QStringLiteral("csv"));
    if (int{isJson} + int{isCsv} + int{line.isSet(QStringLiteral("text"))} > 1)
        line.addFault(QStringLiteral("--text, --json and --csv exclude each other"));
    return isJson ? ExportFormat::Json : isCsv ? ExportFormat::Csv : ExportFormat::Text;
}

/// Standard output, or a file that is there only when it is whole.
class Output
{
public:
    explicit Output(const QString& name)
    {
        if (!name.isEmpty())
            m_file.emplace(name);
    }
    bool open() { return !m_file || m_file->open(QIODevice::WriteOnly); }
    bool write(const std::string& text)
    {
        const auto size = static_cast<qint64>(text.size());
        return m_file ? m_file->write(text.data(), size) == size : print(std::string_view(text));
    }
    bool commit() { return !m_file || m_file->commit(); }
    QString errorText() const { return m_file ? m_file->errorString() : QString(); }

private:
    std::optional<QSaveFile> m_file;
};

/// \return how many lines were written; -1 when the output failed.
std::int64_t writeLines(logreading::Merge& merge, ExportFormat format, Output& output)
{
    logreading::LineExport lines(format);
    std::vector<logreading::LineReader> readers;
    std::string text;
    lines.begin(text);
    std::int64_t count = 0;
    for (logreading::Merge::Row row; merge.next(row); ++count) {
        while (readers.size() <= row.log)
            readers.emplace_back();
        const auto found = merge.view(row.log).line(row.row);
        lines.append(readers[row.log].bytes(found.part->file, found.line.begin, found.line.end),
                     text);
        if (text.size() > bytesAtOnce) {
            if (!output.write(text))
                return -1;
            text.clear();
        }
    }
    return output.write(text) ? count : -1;
}

int run(CommandLine& line)
{
    const logreading::Filter filter = readFilterOption(line);
    const ExportFormat format = readFormat(line);
    if (line.positional().isEmpty())
        line.addFault(QStringLiteral("which file?"));
    if (line.hasFault())
        return line.tellFault();
    std::vector<logreading::LogView> logs;
    const auto extent = line.isSet(QStringLiteral("single"))
                            ? logreading::LogSeries::Extent::Single
                            : logreading::LogSeries::Extent::Rotated;
    const bool isGood = readLogs(line, extent, logs);
    Output output(line.value(QStringLiteral("o")));
    logreading::Merge merge(logs, filter);
    std::int64_t count = -1;
    if (output.open())
        count = writeLines(merge, format, output);
    if (count < 0 || !output.commit()) {
        if (!output.errorText().isEmpty())
            line.tell(QStringLiteral("cannot write '%1': %2")
                          .arg(line.value(QStringLiteral("o")), output.errorText()));
        return WrongUse;
    }
    return !isGood ? WrongUse : count > 0 ? Success : Failure;
}

} // namespace

Command showCommand()
{
    Command command;
    command.group = QStringLiteral("log");
    command.verb = QStringLiteral("show");
    command.summary = QStringLiteral("shows the lines of log files, filtered and merged");
    command.usage = QStringLiteral("[OPTION...] FILE...");
    command.about = QStringLiteral(
        "Shows the lines of log files: FILE with the older ones of its rotation (FILE.N to FILE), "
        "the oldest line first. Several files are merged by time.\n"
        "\n"
        "The exit status is 0 when there were lines, 1 when there were none, 2 when a file could "
        "not be read or written.");
    command.options = {
        filterOption(),
        {QStringLiteral("text"),
         {},
         QStringLiteral("Each line as it is in the file: the default.")},
        {QStringLiteral("json"), {}, QStringLiteral("Each line as a JSON object.")},
        {QStringLiteral("csv"),
         {},
         QStringLiteral("As comma-separated values with a header line.")},
        {QStringLiteral("o"), QStringLiteral("FILE"),
         QStringLiteral("Writes to FILE instead of standard output.")},
        {QStringLiteral("single"), {}, QStringLiteral("Only FILE itself, without its rotation.")},
    };
    command.examples = {
        {QStringLiteral("what went wrong on two stations, in the order of time"),
         QStringLiteral("vlbase log show --filter level:error north.log south.log")},
        {QStringLiteral("one module's lines of the last day, for a spreadsheet"),
         QStringLiteral("vlbase log show --csv --filter \"module:Scanner* after:-1d\" north.log")},
    };
    command.run = run;
    return command;
}

} // namespace vlbase::tool::log

#include "conversion.h"

#include "linesource.h"
#include "progressbar.h"
#include "recognizer.h"
#include "tools/vlbase/commandline.h"
#include "tools/vlbase/exitstatus.h"
#include "tools/vlbase/textoutput.h"

#include <QFileInfo>

#include <algorithm>

namespace vlbase::tool::coord {
namespace {

constexpr std::size_t outputPiece = std::size_t{64} * 1024;
constexpr std::size_t longestQuote = 60;

bool flush(CoordWriter& writer)
{
    const bool isWritten = print(writer.text());
    writer.clear();
    return isWritten;
}

/// The text for a message: short, on one line, without what a terminal could obey.
QString quoted(std::string_view typed)
{
    const bool isCut = typed.size() > longestQuote;
    QString text = QString::fromUtf8(typed.data(),
                                     static_cast<qsizetype>(std::min(typed.size(), longestQuote)));
    for (QChar& character : text) {
        if (!character.isPrint())
            character = u'?';
    }
    return QStringLiteral("'%1'").arg(isCut ? text + u'\u2026' : text);
}

QString notAPosition(const Task& task)
{
    return task.from
               ? QStringLiteral("is no text of the format '%1'").arg(getCoordFormatName(*task.from))
               : QStringLiteral("is not a position");
}

/// Converts line after line and keeps count of what has to be told.
class FileConversion
{
public:
    FileConversion(const Task& task, const CommandLine& line)
        : m_task(task)
        , m_commandLine(line)
        , m_recognizer(task.from)
        , m_writer(task.form, task.to)
    {
    }

    int run(LineSource& source)
    {
        ProgressBar progress(source.size());
        m_writer.writeHeader();
        while (const auto line = source.next()) {
            ++m_number;
            if (!convert(*line) && !tell(progress, *line))
                return Failure;
            progress.show(source.position(), m_number);
            if (m_writer.text().size() >= outputPiece && !flush(m_writer))
                return Failure;
        }
        progress.clear();
        if (!flush(m_writer))
            return Failure;
        if (source.hasFailed()) {
            m_commandLine.tell(QStringLiteral("cannot read on after line %1").arg(m_number));
            return Failure;
        }
        tellDoubt();
        return m_refused > 0 ? Failure : Success;
    }

private:
    /// \return false when the line is no position.
    bool convert(const LineSource::Line& line)
    {
        if (line.text.find_first_not_of(" \t\r") == std::string_view::npos)
            return true;
        const auto reading = line.isCut ? std::nullopt : m_recognizer.read(line.text);
        if (!reading)
            return false;
        if (reading->doubt) {
            if (m_doubtful++ == 0) {
                m_firstDoubt = reading->doubt;
                m_firstDoubtful = m_number;
            }
        }
        m_writer.writeRow(*reading, line.text, m_number);
        return true;
    }

    /// \return false when what came before the line could not be written.
    bool tell(ProgressBar& progress, const LineSource::Line& line)
    {
        ++m_refused;
        progress.clear();
        if (!flush(m_writer))
            return false;
        m_commandLine.tell(
            QStringLiteral("line %1: %2 %3")
                .arg(QString::number(m_number), quoted(line.text), notAPosition(m_task)));
        return true;
    }

    void tellDoubt() const
    {
        if (m_doubtful == 0)
            return;
        const QString lines = m_doubtful == 1 ? QStringLiteral("line %1").arg(m_firstDoubtful)
                                              : QStringLiteral("%1 lines from line %2 on")
                                                    .arg(QString::number(m_doubtful),
                                                         QString::number(m_firstDoubtful));
        m_commandLine.tell(QStringLiteral("%1: %2").arg(lines, QString::fromUtf8(m_firstDoubt)));
    }

    const Task& m_task;
    const CommandLine& m_commandLine;
    Recognizer m_recognizer;
    CoordWriter m_writer;
    qint64 m_number = 0;
    qint64 m_refused = 0;
    qint64 m_doubtful = 0;
    qint64 m_firstDoubtful = 0;
    const char* m_firstDoubt = nullptr;
};

struct TextAndReading
{
    QByteArray text;
    std::optional<Reading> reading;
};

std::vector<TextAndReading> readTexts(const QStringList& texts, const Task& task)
{
    Recognizer recognizer(task.from);
    const auto read = [&recognizer](const QString& text) {
        const QByteArray bytes = text.toUtf8();
        return TextAndReading{
            bytes, recognizer.read({bytes.constData(), static_cast<std::size_t>(bytes.size())})};
    };
    std::vector<TextAndReading> alone;
    for (const QString& text : texts)
        alone.push_back(read(text));
    const auto isRead = [](const TextAndReading& item) { return item.reading.has_value(); };
    if (std::all_of(alone.begin(), alone.end(), isRead))
        return alone;
    // "48.8582 2.2945" without quotes is two arguments, and neither is a position.
    const TextAndReading together = read(texts.join(u' '));
    const bool isOneText = isRead(together) || std::none_of(alone.begin(), alone.end(), isRead);
    return isOneText ? std::vector{together} : alone;
}

} // namespace

int convertTexts(const QStringList& texts, const Task& task, const CommandLine& line)
{
    const std::vector<TextAndReading> items = readTexts(texts, task);
    CoordWriter writer(task.form, task.to);
    const bool isList = task.form == OutputForm::Text && items.size() == 1;
    if (!isList)
        writer.writeHeader();

    int status = Success;
    qint64 number = 0;
    for (const auto& [text, reading] : items) {
        ++number;
        const std::string_view typed(text.constData(), static_cast<std::size_t>(text.size()));
        if (!reading) {
            const bool isFile = QFileInfo::exists(QString::fromUtf8(text));
            line.tell(quoted(typed) + u' ' + notAPosition(task) +
                      (isFile ? QStringLiteral("; to read the file of that name, say --file")
                              : QString()));
            status = Failure;
            continue;
        }
        if (reading->doubt)
            line.tell(quoted(typed) + QStringLiteral(": ") + QString::fromUtf8(reading->doubt));
        if (isList)
            writer.writeList(*reading);
        else
            writer.writeRow(*reading, typed, number);
    }
    return flush(writer) ? status : Failure;
}

int convertFile(const QString& path, const Task& task, const CommandLine& line)
{
    LineSource source;
    if (!source.open(path)) {
        line.tell(QStringLiteral("cannot read %1: %2")
                      .arg(path == u"-" ? QStringLiteral("standard input") : path, source.fault()));
        return Failure;
    }
    return FileConversion(task, line).run(source);
}

} // namespace vlbase::tool::coord

#include "textoutput.h"

#include "tools/vlbase/platform/standardstreams.h"

#include <QStringList>

namespace vlbase::tool {
namespace {

QString wrappedParagraph(const QString& text, qsizetype width, qsizetype indent)
{
    QString result;
    qsizetype column = indent;
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words) {
        if (column > indent && column + 1 + word.size() > width) {
            result += u'\n' + QString(indent, u' ');
            column = indent;
        } else if (column > indent) {
            result += u' ';
            ++column;
        }
        result += word;
        column += word.size();
    }
    return result;
}

} // namespace

bool print(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return print(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

bool print(std::string_view text)
{
    const platform::WriteResult result =
        platform::writeAll(platform::Stream::Output, text.data(), text.size());
    if (result == platform::WriteResult::Failed)
        printError(
            QStringLiteral("vlbase: cannot write to standard output: %1").arg(qt_error_string()));
    return result == platform::WriteResult::Done;
}

void printError(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    platform::writeAll(platform::Stream::Error, bytes.constData(),
                       static_cast<std::size_t>(bytes.size()));
}

QString wrapped(const QString& text, int width, int indent)
{
    QStringList paragraphs = text.split(u'\n');
    for (QString& paragraph : paragraphs)
        paragraph = wrappedParagraph(paragraph, width, indent);
    return paragraphs.join(u'\n' + QString(indent, u' '));
}

} // namespace vlbase::tool

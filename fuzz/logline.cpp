// Lines of any bytes through everything that the program does with a line.

#include "tools/vlbase/log/logline.h"

#include "tools/vlbase/log/gapwatch.h"
#include "tools/vlbase/log/linefilter.h"
#include "tools/vlbase/log/linerenderer.h"
#include "tools/vlbase/log/linetext.h"
#include "tools/vlbase/log/ownnotice.h"

#include <QJsonDocument>

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace vlbase::tool::log;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void checkClean(std::string_view text)
{
    std::string once;
    appendClean(text, Cleaning::ForFile, once);
    std::string twice;
    appendClean(once, Cleaning::ForFile, twice);
    require(once == twice);
    require(once.find_first_of(std::string_view("\0\n\r\x1b\x7f", 5)) == std::string::npos);
    require(QString::fromUtf8(once.data(), static_cast<qsizetype>(once.size())).toStdString() ==
            once);
    require(!isPlain(text) || once == text);
}

void show(std::string_view text, GapWatch& gaps)
{
    LogLine line;
    std::string columns;
    std::string json;
    const auto asColumns = makeColumnRenderer(TimeShown::Local, Colour::PerLevel);
    const auto asJson = makeJsonRenderer();
    if (parseLogLine(text, line)) {
        require(line.index == lineIndex(text));
        if (const auto lost = gaps.lookAt(line))
            require(lost->count > 0 && lost->first >= 100000 && lost->last <= 999998);
        parseNotice(line);
        asColumns->appendLine(line, columns);
        asJson->appendLine(line, json);
    } else {
        asColumns->appendText(text, columns);
        asJson->appendText(text, json);
    }
    require(columns.find('\n') == columns.size() - 1);
    QJsonParseError error;
    QJsonDocument::fromJson(QByteArray::fromStdString(json), &error);
    require(error.error == QJsonParseError::NoError);
    LineFilter filter;
    filter.setLevels({Level::Error});
    filter.setText(QStringLiteral("a"));
    filter.passes(text, &line);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    GapWatch gaps;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\0'), rest.size());
        checkClean(rest.substr(0, end));
        show(rest.substr(0, end), gaps);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return 0;
}

// Lines of any bytes through what the program shows of a line.

#include "tools/vlbase/log/columnrenderer.h"

#include <VLBase/logging/logline.h>

#include <QJsonDocument>

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace vlbase::logging;
using namespace vlbase::tool::log;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void show(std::string_view text)
{
    LogLine line;
    std::string columns;
    std::string json;
    const auto asColumns = makeColumnRenderer(TimeShown::Local, Colour::PerLevel);
    const auto asJson = makeJsonRenderer();
    if (parseLogLine(text, line)) {
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
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    while (!rest.empty())
        show(takeLine(rest));
    return 0;
}

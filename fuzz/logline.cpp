// Lines of any bytes through the parser and the text of the log's lines.

#include <VLBase/logging/gapwatch.h>
#include <VLBase/logging/linetext.h>
#include <VLBase/logging/logline.h>
#include <VLBase/logging/ownernotice.h>

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace vlbase::logging;

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

void read(std::string_view text, GapWatch& gaps)
{
    LogLine line;
    if (!parseLogLine(text, line))
        return;
    require(line.index == lineIndex(text));
    if (const auto lost = gaps.lookAt(line))
        require(lost->count > 0 && lost->first >= 100000 && lost->last <= 999998);
    parseNotice(line);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    GapWatch gaps;
    while (!rest.empty()) {
        const std::string_view line = takeLine(rest);
        checkClean(line);
        read(line, gaps);
    }
    return 0;
}

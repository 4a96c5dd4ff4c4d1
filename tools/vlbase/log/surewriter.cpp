#include "surewriter.h"

#include <VLBase/logging/ilogdata.h>
#include <VLBase/logging/logstatus.h>

#include <algorithm>

namespace vlbase::tool::log {
namespace {

// Number, time, zone, level word, tabs and the zero byte, with room for any zone text.
constexpr std::size_t headerBytes = 96;

class TextBlock : public ILogData
{
public:
    TextBlock(const QString& type, const QString& text)
        : m_type(type)
        , m_text(text)
    {
    }
    QString GetDataType() override { return m_type; }
    QString GetDataText() override { return m_text; }

private:
    QString m_type;
    QString m_text;
};

std::size_t utf8Size(const QString& text)
{
    return static_cast<std::size_t>(text.toUtf8().size());
}

} // namespace

SureWriter::SureWriter(const QString& moduleName)
    : CLogWriter(moduleName)
{
}

std::size_t SureWriter::longestText()
{
    const std::size_t half = halfSize();
    const std::size_t rest = headerBytes + utf8Size(GetStationName()) + utf8Size(GetModuleName());
    return half - std::min(half, rest);
}

/// A log keeps its size for as long as somebody is attached to it.
std::size_t SureWriter::halfSize()
{
    if (m_halfSize == 0 && IsOpen())
        m_halfSize = static_cast<std::size_t>(std::max(logging::peekLog().bufferSize, 0));
    return m_halfSize;
}

QString SureWriter::asWritten(QString text)
{
    // A zero would end the line for everybody who reads it.
    return text.replace(QChar(u'\0'), QChar(0x2400));
}

SureWriter::Result SureWriter::send(logging::LogLevel level, const Fields& fields)
{
    Fields texts = fields;
    std::size_t size = headerBytes + utf8Size(GetStationName()) + utf8Size(GetModuleName());
    for (QString& text : texts) {
        text = asWritten(text);
        size += utf8Size(text);
    }
    if (!IsOpen() && !Open())
        return Result::NoOwner;
    const std::size_t half = halfSize();
    if (size > half)
        return Result::TooLong;
    if (level == logging::LogLevel::Data && !GetAcceptDataBlocks() && IsWriterAvailable())
        return Result::NoBlocks;

    const Lock lock(this);
    if (!IsWriterAvailable())
        return Result::NoOwner;
    char* start = nullptr;
    long fill = 0;
    GetBuffer(1, &start, &fill);
    // A quarter stays free for programs that do not wait.
    if (fill > 0 && static_cast<std::size_t>(fill) + size > half / 4 * 3)
        return Result::Full;
    switch (level) {
    case logging::LogLevel::Error:
        SendError(texts[0], texts[1], texts[2]);
        break;
    case logging::LogLevel::Warning:
        SendWarning(texts[0], texts[1], texts[2]);
        break;
    case logging::LogLevel::Event:
        SendEvent(texts[0], texts[1], texts[2]);
        break;
    case logging::LogLevel::Admin:
        SendAdmin(texts[0], texts[1], texts[2]);
        break;
    case logging::LogLevel::Trace:
        SendTrace(texts[0], texts[1], texts[2]);
        break;
    case logging::LogLevel::Data: {
        TextBlock block(texts[0], texts[1]);
        SendData(&block, texts[2]);
        break;
    }
    }
    return Result::Sent;
}

} // namespace vlbase::tool::log

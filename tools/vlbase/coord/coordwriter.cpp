#include "coordwriter.h"

#include "formatkey.h"
#include "tools/jsontext.h"

#include <VLBase/coord/coordconversion.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace vlbase::tool::coord {
namespace {

void appendUtf8(const QString& text, std::string& out)
{
    // The texts of positions are Latin-1, nearly all of it ASCII.
    for (const QChar character : text) {
        const char16_t code = character.unicode();
        if (code < 0x80) {
            out += static_cast<char>(code);
        } else {
            out += static_cast<char>(0xC0 | (code >> 6));
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
}

void appendLatin1(QLatin1String text, std::string& out)
{
    out.append(text.data(), static_cast<std::size_t>(text.size()));
}

/// Degrees with enough digits to come back, without the tail of rounding: nanometres.
void appendDegrees(double degrees, std::string& out)
{
    char number[40];
    const auto written = std::to_chars(std::begin(number), std::end(number), degrees,
                                       std::chars_format::general, 12);
    out.append(number, written.ptr);
}

/// The text of a position in a format; false when it has none.
bool convert(const Coord& position, CoordFormat format, QString& text)
{
    return CoordToString(position.GetLongitude(), position.GetLatitude(), format, text) == CoordOk;
}

} // namespace

CoordWriter::CoordWriter(OutputForm form, std::vector<CoordFormat> formats)
    : m_form(form)
    , m_formats(std::move(formats))
{
    for (const CoordFormat format : m_formats)
        m_widths.push_back(
            std::max(Coord().GetMask(format).size(), getCoordFormatName(format).size()));
}

void CoordWriter::appendPadded(const QString& text, qsizetype width)
{
    appendUtf8(text, m_text);
    m_text.append(static_cast<std::size_t>(std::max<qsizetype>(width - text.size(), 0)), ' ');
}

void CoordWriter::writeHeader()
{
    if (m_form == OutputForm::Json || (m_form == OutputForm::Text && m_formats.size() == 1))
        return;
    if (m_form == OutputForm::Csv) {
        m_text += "line";
        for (const CoordFormat format : m_formats) {
            m_text += ',';
            appendLatin1(formatKey(format), m_text);
        }
    } else {
        for (std::size_t i = 0; i < m_formats.size(); ++i) {
            const bool isLast = i + 1 == m_formats.size();
            appendPadded(getCoordFormatName(m_formats[i]), isLast ? 0 : m_widths[i] + 2);
        }
    }
    m_text += '\n';
}

void CoordWriter::writeRow(const Reading& reading, std::string_view typed, qint64 line)
{
    switch (m_form) {
    case OutputForm::Text:
        writeTextRow(reading.position);
        break;
    case OutputForm::Csv:
        writeCsvRow(reading.position, line);
        break;
    case OutputForm::Json:
        writeJsonRow(reading, typed, line);
        break;
    }
    m_text += '\n';
}

void CoordWriter::writeTextRow(const Coord& position)
{
    for (std::size_t i = 0; i < m_formats.size(); ++i) {
        if (!convert(position, m_formats[i], m_cell))
            m_cell = QStringLiteral("-");
        const bool isLast = i + 1 == m_formats.size();
        appendPadded(m_cell, isLast ? 0 : m_widths[i] + 2);
    }
}

void CoordWriter::writeCsvRow(const Coord& position, qint64 line)
{
    // No text of a position holds a comma or a double quote; one that it has not is empty.
    m_text += std::to_string(line);
    for (const CoordFormat format : m_formats) {
        m_text += ',';
        if (convert(position, format, m_cell))
            appendUtf8(m_cell, m_text);
    }
}

void CoordWriter::writeJsonRow(const Reading& reading, std::string_view typed, qint64 line)
{
    m_text += "{\"line\":" + std::to_string(line) + ",\"input\":";
    appendJsonString(typed, m_text);
    m_text += ",\"format\":\"";
    appendLatin1(formatKey(reading.format), m_text);
    m_text += "\",\"longitude\":";
    appendDegrees(reading.position.GetLongitude(), m_text);
    m_text += ",\"latitude\":";
    appendDegrees(reading.position.GetLatitude(), m_text);
    if (reading.doubt) {
        m_text += ",\"doubt\":";
        appendJsonString(reading.doubt, m_text);
    }
    m_text += ",\"texts\":{";
    for (std::size_t i = 0; i < m_formats.size(); ++i) {
        m_text += i == 0 ? "\"" : ",\"";
        appendLatin1(formatKey(m_formats[i]), m_text);
        m_text += "\":";
        if (convert(reading.position, m_formats[i], m_cell)) {
            m_text += '"';
            appendUtf8(m_cell, m_text);
            m_text += '"';
        } else {
            m_text += "null";
        }
    }
    m_text += "}}";
}

void CoordWriter::writeList(const Reading& reading)
{
    qsizetype width = 0;
    for (const CoordFormat format : m_formats)
        width = std::max(width, getCoordFormatName(format).size());
    for (const CoordFormat format : m_formats) {
        if (m_formats.size() > 1)
            appendPadded(getCoordFormatName(format), width + 2);
        // Here is room for why there is no text.
        appendUtf8(reading.position.GetString(format), m_text);
        m_text += '\n';
    }
}

} // namespace vlbase::tool::coord

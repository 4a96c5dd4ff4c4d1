#include "lineexport.h"

namespace vlbase::logreading {
namespace {

void appendCell(std::string_view cell, std::string& out)
{
    if (cell.find_first_of("\",\r\n") == std::string_view::npos) {
        out += cell;
        return;
    }
    out += '"';
    for (const char c : cell) {
        if (c == '"')
            out += '"';
        out += c;
    }
    out += '"';
}

} // namespace

LineExport::LineExport(ExportFormat format)
    : m_format(format)
    , m_json(makeJsonRenderer())
{
}

void LineExport::begin(std::string& out) const
{
    if (m_format == ExportFormat::Csv)
        out += "number,time,zone,station,module,level,field1,field2,field3\r\n";
}

void LineExport::append(std::string_view line, std::string& out)
{
    switch (m_format) {
    case ExportFormat::Text:
        out += line;
        if (line.empty() || line.back() != '\n')
            out += '\n';
        return;
    case ExportFormat::Json:
        line = withoutLineEnd(line);
        if (logging::parseLogLine(line, m_scratch))
            m_json->appendLine(m_scratch, out);
        else
            m_json->appendText(line, out);
        return;
    case ExportFormat::Csv:
        appendCsv(line, out);
    }
}

void LineExport::appendCsv(std::string_view line, std::string& out)
{
    const LineFields fields = fieldsOf(line, m_scratch);
    if (fields.number != 0)
        out += std::to_string(fields.number);
    for (const std::string_view cell :
         {m_scratch.time, m_scratch.zone, fields.station, fields.module, fields.level,
          fields.event[0], fields.event[1], fields.event[2]}) {
        out += ',';
        appendCell(cell, out);
    }
    out += "\r\n";
}

} // namespace vlbase::logreading

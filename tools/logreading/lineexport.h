#pragma once

#include "linefields.h"
#include "linerenderer.h"

#include <memory>
#include <string>
#include <string_view>

namespace vlbase::logreading {

enum class ExportFormat {
    Text, ///< each line as it is in the file
    Json, ///< one object a line, as `LineRenderer` has them
    Csv   ///< RFC 4180 with a header line; the fields as in `LineFields`, times as in the log
};

/// Makes lines into text for other programs. For one thread.
class LineExport
{
public:
    explicit LineExport(ExportFormat format);

    /// What stands before the first line.
    void begin(std::string& out) const;
    /// A line, with or without its line end.
    void append(std::string_view line, std::string& out);

private:
    void appendCsv(std::string_view line, std::string& out);

    ExportFormat m_format;
    std::unique_ptr<LineRenderer> m_json;
    logging::LogLine m_scratch;
};

} // namespace vlbase::logreading

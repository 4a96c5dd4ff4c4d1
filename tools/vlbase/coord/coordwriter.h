#pragma once

#include "recognizer.h"

#include <QString>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace vlbase::tool::coord {

enum class OutputForm { Text, Csv, Json };

/// Writes what was read in the formats asked for: one row each, as aligned columns, as CSV or as
/// one JSON object. It collects its output in one buffer.
class CoordWriter
{
public:
    CoordWriter(OutputForm form, std::vector<CoordFormat> formats);

    /// The line above the rows, where the form has one.
    void writeHeader();

    /// \param line the number of the input's line
    void writeRow(const Reading& reading, std::string_view typed, qint64 line);

    /// All formats of one position below each other, each after its name, for people.
    void writeList(const Reading& reading);

    const std::string& text() const { return m_text; }
    void clear() { m_text.clear(); }

private:
    void writeTextRow(const Coord& position);
    void writeCsvRow(const Coord& position, qint64 line);
    void writeJsonRow(const Reading& reading, std::string_view typed, qint64 line);
    void appendPadded(const QString& text, qsizetype width);

    OutputForm m_form;
    std::vector<CoordFormat> m_formats;
    std::vector<qsizetype> m_widths;
    QString m_cell;
    std::string m_text;
};

} // namespace vlbase::tool::coord

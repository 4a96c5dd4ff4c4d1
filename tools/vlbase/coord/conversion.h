#pragma once

#include "coordwriter.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace vlbase::tool {
class CommandLine;
}

namespace vlbase::tool::coord {

/// What one call of the verb is to do.
struct Task
{
    std::optional<CoordFormat> from;
    std::vector<CoordFormat> to;
    OutputForm form = OutputForm::Text;
};

/// Converts texts of the command line: each alone, or all together as one when not every one
/// of them is a position.
/// \return the exit status.
int convertTexts(const QStringList& texts, const Task& task, const CommandLine& line);

/// Converts the lines of a file, or of standard input for "-".
/// \return the exit status; a line that is no position is told and makes it Failure.
int convertFile(const QString& path, const Task& task, const CommandLine& line);

} // namespace vlbase::tool::coord

#pragma once

#include "tools/logreading/filter.h"
#include "tools/logreading/logseries.h"
#include "tools/vlbase/commandline.h"

#include <vector>

namespace vlbase::tool::log {

/// The option that all readers of a log have.
Option filterOption();

/// The filter of a line; one that is none is a fault of the line, with its place.
logreading::Filter readFilterOption(CommandLine& line);

/// Reads the logs that the line names to their ends. What cannot be read is told.
/// \return false when there was such.
bool readLogs(const CommandLine& line, logreading::LogSeries::Extent extent,
              std::vector<logreading::LogView>& logs);

} // namespace vlbase::tool::log

#pragma once

#include "tools/logreading/linerenderer.h"

#include <memory>

namespace vlbase::tool::log {

using logreading::LineRenderer;
using logreading::makeJsonRenderer;

enum class TimeShown { Local, Utc };
enum class Colour { Never, PerLevel };

/// Columns for people: time, level, station, module, and the event's fields. The columns of
/// station and module are as wide as the widest name so far, up to a limit.
std::unique_ptr<LineRenderer> makeColumnRenderer(TimeShown time, Colour colour);

} // namespace vlbase::tool::log

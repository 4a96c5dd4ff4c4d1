#pragma once

#include <VLBase/basetypes/band.h>

#include <QString>

#include <optional>

namespace vlbase::tool {
class CommandLine;
}

namespace vlbase::tool::band {

/// The band that a verb was given, by its name or number. Notes a fault of the line, with the
/// name that was probably meant, when there is none.
std::optional<unsigned> bandArgument(CommandLine& line, const QString& name);

} // namespace vlbase::tool::band

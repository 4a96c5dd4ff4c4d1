#pragma once

#include "tools/jsontext.h"

#include <QJsonObject>

namespace vlbase::tool::band {

/// Number, name, spacing and channel ranges of a band of the plan, in hertz.
QJsonObject bandObject(unsigned index);

} // namespace vlbase::tool::band

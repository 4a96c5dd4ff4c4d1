#pragma once

#include <VLBase/basetypes/band.h>

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace vlbase::tool::band {

/// Number, name, spacing and channel ranges of a band of the plan, in hertz.
QJsonObject bandObject(unsigned index);

/// As indented text with a line end.
QString jsonText(const QJsonValue& value);

} // namespace vlbase::tool::band

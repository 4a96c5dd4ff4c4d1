#pragma once

#include "geometrysearch.h"

#include <QJsonObject>
#include <QString>

namespace vlbase::tool::geometry {

/// A stored geometry in lines, for people.
QString asText(const StoredGeometry& geometry);

/// The same for programs. Rectangles are left out of what is not valid.
QJsonObject asJson(const StoredGeometry& geometry);

} // namespace vlbase::tool::geometry

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace vlbase::tool::geometry {

/// A window geometry as it was stored, and where.
struct StoredGeometry
{
    QString place; ///< the file, and the key in a settings file; empty for typed digits
    QByteArray record;
};

/// Whether the text has hexadecimal digits, and besides them blanks only.
bool isHexText(QStringView text);

/// The geometries that a file holds: a record itself, its hexadecimal digits, or a settings file
/// with such values, of which those that are no geometries are left out.
/// \return false with `errorText` when the file cannot be read.
bool findInFile(const QString& fileName, std::vector<StoredGeometry>& found, QString& errorText);

} // namespace vlbase::tool::geometry

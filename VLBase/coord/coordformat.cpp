#include "coordformat.h"

#include <VLBase/coord/internal/formattable.h>

#include <QCoreApplication>

using vlbase::coord::findFormat;

QString getCoordFormatName(CoordFormat format)
{
    const auto* row = findFormat(format);
    return row ? QString::fromLatin1(row->name) : QString();
}

QString getTranslatedCoordFormatName(CoordFormat format)
{
    const auto* row = findFormat(format);
    return row ? QCoreApplication::tr(row->name) : QString();
}

#pragma once

#include <VLBase/vlbase_export.h>

class QAction;
class QObject;

namespace QActionHelpers {

/// A new separator, child of `parent`.
VLBASE_EXPORT QAction* createSeparator(QObject* parent);

} // namespace QActionHelpers

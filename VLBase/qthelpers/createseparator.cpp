#include "createseparator.h"

#include <QAction>

namespace QActionHelpers {

QAction* createSeparator(QObject* parent)
{
    auto* separator = new QAction(parent);
    separator->setSeparator(true);
    return separator;
}

} // namespace QActionHelpers

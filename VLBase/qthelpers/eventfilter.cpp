#include "eventfilter.h"

namespace QObjectHelpers {

EventFilter::EventFilter(const Filter& filter, QObject* parent)
    : QObject(parent)
    , m_filter(std::make_shared<const Filter>(filter))
{
}

bool EventFilter::eventFilter(QObject* watched, QEvent* event)
{
    // Shared for the length of the call, which may end this object.
    const std::shared_ptr<const Filter> filter = m_filter;
    return (*filter)(watched, event);
}

} // namespace QObjectHelpers

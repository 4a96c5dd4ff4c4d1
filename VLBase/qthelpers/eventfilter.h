#pragma once

#include <VLBase/vlbase_export.h>

#include <QObject>

#include <functional>
#include <memory>

namespace QObjectHelpers {

/// Turns a function object into an event filter.
///
/// The caller installs it (`QObject::installEventFilter`) on each object to watch. The function
/// may delete the watched object or the filter, if it then stops the event.
class VLBASE_EXPORT EventFilter : public QObject
{
    Q_OBJECT

public:
    using Filter = std::function<bool(QObject* watched, QEvent* event)>;

    /// \param filter returns true to stop an event, false to let it pass on.
    EventFilter(const Filter& filter, QObject* parent);

    /// What the function answers.
    /// \throw std::bad_function_call when the function is empty.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::shared_ptr<const Filter> m_filter;
};

} // namespace QObjectHelpers

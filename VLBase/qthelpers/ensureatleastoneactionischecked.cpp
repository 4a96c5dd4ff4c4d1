#include "ensureatleastoneactionischecked.h"

#include <QAction>
#include <QPointer>
#include <QScopeGuard>

#include <algorithm>
#include <utility>

namespace QActionHelpers {

EnsureAtLeastOneActionIsCheckedHandler::EnsureAtLeastOneActionIsCheckedHandler(
    QList<QAction*> actions, QObject* parent)
    : QObject(parent)
{
    actions.removeAll(nullptr);
    for (QAction* action : std::as_const(actions)) {
        m_actions.append(action);
        connect(action, SIGNAL(toggled(bool)), this, SLOT(onToggled(bool)), Qt::UniqueConnection);
    }
    if (!actions.isEmpty() && !isAnyChecked())
        actions.first()->setChecked(true);
}

void EnsureAtLeastOneActionIsCheckedHandler::onToggled(bool checked)
{
    if (checked || m_restoring)
        return;
    if (isAnyChecked())
        return;
    auto* action = qobject_cast<QAction*>(sender());
    if (!action)
        return;
    // Others hear of the restored state too and may end this object, or throw.
    const auto restored =
        qScopeGuard([self = QPointer<EnsureAtLeastOneActionIsCheckedHandler>(this)] {
            if (self)
                self->m_restoring = false;
        });
    m_restoring = true;
    action->setChecked(true);
}

bool EnsureAtLeastOneActionIsCheckedHandler::isAnyChecked() const
{
    return std::any_of(m_actions.cbegin(), m_actions.cend(),
                       [](const QAction* action) { return action && action->isChecked(); });
}

} // namespace QActionHelpers

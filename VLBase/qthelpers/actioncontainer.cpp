#include "actioncontainer.h"

#include <VLBase/qthelpers/createseparator.h>

#include <QAction>
#include <QVariant>
#include <QWidget>

namespace QActionHelpers {

namespace {

constexpr char roleProperty[] = "QActionHelpers_ActionContainer_actionRole";
constexpr int separatorRole = -1;

int roleOf(const QAction* action)
{
    return action->isSeparator() ? separatorRole : action->property(roleProperty).toInt();
}

} // namespace

ActionContainer::ActionContainer(QObject* parent)
    : QObject(parent)
{
}

ActionContainer* ActionContainer::addAction(QAction* action, int role)
{
    if (!action)
        return this;
    if (!action->parent())
        action->setParent(this);
    if (!action->isSeparator())
        action->setProperty(roleProperty, role);
    append(action);
    return this;
}

QAction* ActionContainer::addAction(const QString& text, int role)
{
    auto* action = new QAction(text, this);
    addAction(action, role);
    return action;
}

QAction* ActionContainer::addAction(const QIcon& icon, const QString& text, int role)
{
    auto* action = new QAction(icon, text, this);
    addAction(action, role);
    return action;
}

ActionContainer* ActionContainer::addActions(const QList<QAction*>& actions, int role)
{
    for (QAction* action : actions)
        addAction(action, role);
    return this;
}

ActionContainer* ActionContainer::addActions(std::initializer_list<QAction*> actions, int role)
{
    return addActions(QList<QAction*>(actions), role);
}

ActionContainer* ActionContainer::addSeparator()
{
    append(createSeparator(this));
    return this;
}

QList<QAction*> ActionContainer::actions(int role, bool withSeparators) const
{
    if (withSeparators && role == 0)
        return m_actions;
    QList<QAction*> selected;
    for (QAction* action : m_actions) {
        const bool inside = withSeparators && action->isSeparator() && !selected.isEmpty();
        if (roleOf(action) == role || inside)
            selected.append(action);
    }
    while (!selected.isEmpty() && selected.last()->isSeparator())
        selected.removeLast();
    return selected;
}

int ActionContainer::count(int role, bool withSeparators) const
{
    return static_cast<int>(actions(role, withSeparators).size());
}

int ActionContainer::size() const
{
    return static_cast<int>(m_actions.size());
}

bool ActionContainer::removeAction(QAction* action)
{
    if (!take(action))
        return false;
    if (action->parent() == this)
        action->setParent(nullptr);
    return true;
}

bool ActionContainer::moveActionTo(QAction* action, QWidget& widget)
{
    if (!take(action))
        return false;
    if (action->parent() == this)
        action->setParent(&widget);
    return true;
}

QList<QAction*> ActionContainer::moveActionsTo(QWidget& widget, int role, bool withSeparators)
{
    return moveActionsTo(actions(role, withSeparators), widget);
}

QList<QAction*> ActionContainer::moveActionsTo(const QList<QAction*>& actions, QWidget& widget)
{
    QList<QAction*> moved;
    for (QAction* action : actions) {
        if (moveActionTo(action, widget))
            moved.append(action);
    }
    widget.addActions(moved);
    return moved;
}

QList<QAction*> ActionContainer::moveActionsTo(std::initializer_list<QAction*> actions,
                                               QWidget& widget)
{
    return moveActionsTo(QList<QAction*>(actions), widget);
}

void ActionContainer::append(QAction* action)
{
    m_actions.append(action);
    connect(action, &QObject::destroyed, this, &ActionContainer::forget, Qt::UniqueConnection);
}

bool ActionContainer::take(QAction* action)
{
    // Looked up before it is touched: the caller may name an action that is gone.
    if (m_actions.removeAll(action) == 0)
        return false;
    disconnect(action, &QObject::destroyed, this, &ActionContainer::forget);
    return true;
}

void ActionContainer::forget(QObject* destroyed)
{
    // Nothing but the address is left of the action: it is compared as it came.
    m_actions.removeIf([destroyed](const QAction* action) { return action == destroyed; });
}

} // namespace QActionHelpers

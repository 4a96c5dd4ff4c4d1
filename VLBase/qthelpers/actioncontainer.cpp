#include "actioncontainer.h"

#include <VLBase/qthelpers/createseparator.h>

#include <QAction>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <iterator>
#include <utility>

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
    QList<QAction*> all = entries();
    if (withSeparators && role == 0)
        return all;
    QList<QAction*> selected;
    for (QAction* action : std::as_const(all)) {
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
    return static_cast<int>(entries().size());
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

QList<QAction*> ActionContainer::entries() const
{
    QList<QAction*> living;
    std::copy_if(m_actions.cbegin(), m_actions.cend(), std::back_inserter(living),
                 [](const QAction* action) { return action != nullptr; });
    return living;
}

void ActionContainer::append(QAction* action)
{
    m_actions.removeAll(nullptr);
    m_actions.append(action);
}

bool ActionContainer::take(QAction* action)
{
    // Looked up before it is touched: the caller may name an action that is gone.
    return action && m_actions.removeAll(action) > 0;
}

} // namespace QActionHelpers

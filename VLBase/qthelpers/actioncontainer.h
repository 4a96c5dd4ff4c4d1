#pragma once

#include <VLBase/vlbase_export.h>

#include <QList>
#include <QObject>
#include <QPointer>

#include <initializer_list>

class QAction;
class QIcon;
class QWidget;

namespace QActionHelpers {

/// Keeps actions and separators in order, each action tagged with a role, and hands them out by
/// role.
///
/// The role is a number of the caller's choice and is kept on the action itself; a separator's
/// is -1. An action that is deleted elsewhere leaves the container at once, before its own
/// `destroyed()` is heard.
class VLBASE_EXPORT ActionContainer : public QObject
{
    Q_OBJECT

public:
    explicit ActionContainer(QObject* parent = nullptr);

    /// Appends an action and takes it as a child if it has no parent. Null is ignored.
    ActionContainer* addAction(QAction* action, int role = 0);

    /// Appends a new action, a child of the container.
    QAction* addAction(const QString& text, int role = 0);
    QAction* addAction(const QIcon& icon, const QString& text, int role = 0);

    ActionContainer* addActions(const QList<QAction*>& actions, int role = 0);
    ActionContainer* addActions(std::initializer_list<QAction*> actions, int role = 0);

    /// Appends a new separator, a child of the container.
    ActionContainer* addSeparator();

    /// The actions of a role, in order.
    ///
    /// With separators, those between two of the actions are handed out too: none leads, none
    /// trails, runs stay as they are. Role 0 with separators means the whole list as it is.
    QList<QAction*> actions(int role = 0, bool withSeparators = true) const;

    /// How many actions `actions` hands out.
    int count(int role = 0, bool withSeparators = true) const;

    /// How many entries the container holds, separators included.
    int size() const;

    /// Takes an action out. One that was a child of the container belongs to the caller then.
    /// \return false when the action is not in the container.
    bool removeAction(QAction* action);

    /// Takes an action out. One that was a child of the container becomes a child of `widget`,
    /// to which it is not added.
    /// \return false when the action is not in the container.
    bool moveActionTo(QAction* action, QWidget& widget);

    /// Adds to `widget` what `actions(role, withSeparators)` hands out and takes it out of the
    /// container; children of the container become children of the widget.
    /// \return the actions moved.
    QList<QAction*> moveActionsTo(QWidget& widget, int role = 0, bool withSeparators = true);

    /// The same for the given actions; those that are not in the container are skipped.
    QList<QAction*> moveActionsTo(const QList<QAction*>& actions, QWidget& widget);
    QList<QAction*> moveActionsTo(std::initializer_list<QAction*> actions, QWidget& widget);

private:
    QList<QAction*> entries() const;
    void append(QAction* action);
    bool take(QAction* action);

    // Those of ended actions are null, until the next one is appended.
    QList<QPointer<QAction>> m_actions;
};

} // namespace QActionHelpers

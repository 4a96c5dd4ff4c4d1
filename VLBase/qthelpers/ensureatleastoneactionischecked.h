#pragma once

#include <VLBase/vlbase_export.h>

#include <QList>
#include <QObject>
#include <QPointer>

class QAction;

namespace QActionHelpers {

/// Keeps at least one of several checkable actions checked, any number of them being allowed.
///
/// Unchecking the last checked one is undone. An action that ends is no longer watched.
class VLBASE_EXPORT EnsureAtLeastOneActionIsCheckedHandler : public QObject
{
    Q_OBJECT

public:
    /// Checks the first of the actions at once if none is checked.
    explicit EnsureAtLeastOneActionIsCheckedHandler(QList<QAction*> actions,
                                                    QObject* parent = nullptr);

private Q_SLOTS:
    void onToggled(bool checked);

private:
    bool isAnyChecked() const;

    QList<QPointer<QAction>> m_actions;
    bool m_restoring = false;
};

} // namespace QActionHelpers

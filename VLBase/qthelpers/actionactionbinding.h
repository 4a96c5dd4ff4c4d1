#pragma once

#include <VLBase/vlbase_export.h>

#include <QFlags>
#include <QObject>
#include <QPointer>

class QAction;

namespace QActionHelpers {

/// Mirrors the state of one action onto another, from its creation until either action ends.
///
/// Two bindings may join a pair of actions in both directions as long as not both of them
/// mirror triggering.
class VLBASE_EXPORT ActionActionBinding : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE(<QAction>)

public:
    /// What is mirrored.
    enum Option {
        BindCheckable = 0x01,
        /// The checked state, on every toggle. Includes triggering: a checkable target is set to
        /// the new state and then toggled by the trigger.
        BindChecked = 0x02,
        BindEnabled = 0x04,
        BindIcon = 0x08,
        BindText = 0x10,
        BindToolTip = 0x20,
        BindTriggered = 0x40,
        BindVisible = 0x80
    };
    Q_DECLARE_FLAGS(Options, Option)

    static constexpr Options BindAll = Options::fromInt(0xFF);
    /// What the source's `changed()` stands for: all but `BindChecked`.
    static constexpr Options BindChanged = Options::fromInt(0xFD);

    /// A new binding of everything; see below.
    static ActionActionBinding* create(QAction& source, QAction& target, QObject* parent = nullptr);

    /// A new binding, which sets the target to the source's state at once.
    /// \param parent owns the binding; null stands for the target.
    static ActionActionBinding* create(QAction& source, QAction& target, QFlags<Option> options,
                                       QObject* parent = nullptr);

private Q_SLOTS:
    void onChanged();
    void onToggled(bool checked);
    void onTriggered();

private:
    ActionActionBinding(QAction& source, QAction& target, Options options, QObject* parent);

    // Between the end of an action and that of the binding the other action may still change.
    QPointer<QAction> m_source;
    QPointer<QAction> m_target;
    Options m_options;
};

} // namespace QActionHelpers

Q_DECLARE_OPERATORS_FOR_FLAGS(QActionHelpers::ActionActionBinding::Options)

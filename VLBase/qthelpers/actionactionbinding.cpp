#include "actionactionbinding.h"

#include <QAction>
#include <QIcon>

namespace QActionHelpers {

ActionActionBinding* ActionActionBinding::create(QAction& source, QAction& target, QObject* parent)
{
    return create(source, target, BindAll, parent);
}

ActionActionBinding* ActionActionBinding::create(QAction& source, QAction& target,
                                                 QFlags<Option> options, QObject* parent)
{
    return new ActionActionBinding(source, target, options, parent ? parent : &target);
}

ActionActionBinding::ActionActionBinding(QAction& source, QAction& target, Options options,
                                         QObject* parent)
    : QObject(parent)
    , m_source(&source)
    , m_target(&target)
    , m_options(options)
{
    if (options & BindChanged) {
        connect(&source, SIGNAL(changed()), this, SLOT(onChanged()));
        onChanged();
    }
    if (options & (BindChecked | BindTriggered))
        connect(&source, SIGNAL(triggered()), this, SLOT(onTriggered()));
    if (options & BindChecked) {
        connect(&source, SIGNAL(toggled(bool)), this, SLOT(onToggled(bool)));
        target.setChecked(source.isChecked());
    }
    connect(&source, SIGNAL(destroyed()), this, SLOT(deleteLater()));
    connect(&target, SIGNAL(destroyed()), this, SLOT(deleteLater()));
}

void ActionActionBinding::onChanged()
{
    // Each step may run slots of others that end an action, or this binding with its parent.
    const QPointer<QAction> source = m_source;
    const QPointer<QAction> target = m_target;
    const Options options = m_options;
    const auto copies = [&](Option option) { return source && target && (options & option); };

    if (copies(BindCheckable))
        target->setCheckable(source->isCheckable());
    if (copies(BindEnabled))
        target->setEnabled(source->isEnabled());
    // An action tells of every new icon, the same one included: two bindings in opposite
    // directions would never come to rest.
    if (copies(BindIcon) && target->icon().cacheKey() != source->icon().cacheKey())
        target->setIcon(source->icon());
    if (copies(BindText))
        target->setText(source->text());
    if (copies(BindToolTip))
        target->setToolTip(source->toolTip());
    if (copies(BindVisible))
        target->setVisible(source->isVisible());
}

void ActionActionBinding::onToggled(bool checked)
{
    if (m_target)
        m_target->setChecked(checked);
}

void ActionActionBinding::onTriggered()
{
    if (m_target)
        m_target->activate(QAction::Trigger);
}

} // namespace QActionHelpers

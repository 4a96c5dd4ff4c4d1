#include <VLBase/qthelpers/actionactionbinding.h>
#include <VLBase/qthelpers/actioncontainer.h>
#include <VLBase/qthelpers/createseparator.h>
#include <VLBase/qthelpers/ensureatleastoneactionischecked.h>

#include <QAction>
#include <QIcon>
#include <QPixmap>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <memory>

using namespace QActionHelpers;
using Binding = ActionActionBinding;

namespace {

constexpr char roleProperty[] = "QActionHelpers_ActionContainer_actionRole";

QString textsOf(const QList<QAction*>& actions)
{
    QString texts;
    for (const QAction* action : actions)
        texts += action->isSeparator() ? QStringLiteral("|") : action->text();
    return texts;
}

/// One letter per action, whose role is the digit behind it; "|" is a separator.
void fill(ActionContainer& container, const QString& plan)
{
    for (qsizetype i = 0; i < plan.size(); ++i) {
        if (plan[i] == u'|')
            container.addSeparator();
        else
            container.addAction(QString(plan[i]), plan[i + 1].digitValue());
        i += plan[i] == u'|' ? 0 : 1;
    }
}

QIcon icon(Qt::GlobalColor colour)
{
    QPixmap pixmap(4, 4);
    pixmap.fill(colour);
    return QIcon(pixmap);
}

QAction* checkable(QObject* parent, bool checked = false)
{
    auto* action = new QAction(parent);
    action->setCheckable(true);
    action->setChecked(checked);
    return action;
}

} // namespace

class TestActions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rolesSelectActions_data();
    void rolesSelectActions();
    void containerTakesOrphansOnly();
    void endedActionLeavesTheContainer();
    void removedActionBelongsToTheCaller();
    void movedActionsChangeTheirParent();
    void bindingMirrorsItsOptions_data();
    void bindingMirrorsItsOptions();
    void bindingTriggers();
    void checkedBindingSetsAndTriggers();
    void bindingsInBothDirectionsComeToRest();
    void bindingEndsWithEitherAction();
    void guardKeepsOneChecked();
    void guardSurvivesItsActionsAndItsEnd();
};

void TestActions::rolesSelectActions_data()
{
    QTest::addColumn<QString>("plan");
    QTest::addColumn<int>("role");
    QTest::addColumn<bool>("withSeparators");
    QTest::addColumn<QString>("selected");

    const QString mixed = u"A1|B2|C1"_qs;
    QTest::newRow("inner run is kept") << mixed << 1 << true << u"A||C"_qs;
    QTest::newRow("no separators") << mixed << 1 << false << u"AC"_qs;
    QTest::newRow("none leads, none trails") << mixed << 2 << true << u"B"_qs;
    QTest::newRow("everything as it is") << u"|A1|B0|"_qs << 0 << true << u"|A|B|"_qs;
    QTest::newRow("role 0 itself") << u"|A1|B0|C0|"_qs << 0 << false << u"BC"_qs;
    QTest::newRow("nobody has it") << mixed << 7 << true << QString();
    QTest::newRow("separators have no role") << u"|A1|"_qs << -1 << false << QString();
}

void TestActions::rolesSelectActions()
{
    QFETCH(QString, plan);
    QFETCH(int, role);
    QFETCH(bool, withSeparators);
    QFETCH(QString, selected);
    ActionContainer container(nullptr);
    fill(container, plan);

    QCOMPARE(textsOf(container.actions(role, withSeparators)), selected);
    QCOMPARE(container.count(role, withSeparators), selected.size());
    QWidget widget;
    QCOMPARE(textsOf(container.moveActionsTo(widget, role, withSeparators)), selected);
    QCOMPARE(textsOf(widget.actions()), selected);
    QString digits = plan;
    digits.remove(QRegularExpression(u"\\d"_qs));
    QCOMPARE(container.size(), digits.size() - selected.size());
}

void TestActions::containerTakesOrphansOnly()
{
    QObject owner;
    ActionContainer container(nullptr);
    auto* orphan = new QAction;
    auto* owned = new QAction(&owner);
    QAction* separator = createSeparator(&owner);
    QCOMPARE(container.addAction(nullptr, 3), &container);
    QCOMPARE(container.size(), 0);
    QCOMPARE(container.addActions({orphan, nullptr, owned}, 3), &container);
    container.addAction(separator, 3);
    QAction* made = container.addAction(icon(Qt::red), u"made"_qs, 4);

    QCOMPARE(orphan->parent(), &container);
    QCOMPARE(owned->parent(), &owner);
    QCOMPARE(made->parent(), &container);
    QVERIFY(!made->icon().isNull());
    QCOMPARE(owned->property(roleProperty), QVariant(3));
    QVERIFY(!separator->property(roleProperty).isValid());
    QCOMPARE(container.actions(3, true), QList<QAction*>({orphan, owned}));
    QCOMPARE(container.size(), 4);
}

void TestActions::endedActionLeavesTheContainer()
{
    QObject owner;
    ActionContainer container(nullptr);
    auto* first = new QAction(&owner);
    container.addAction(first, 1)->addAction(first, 1);
    QAction* second = container.addAction(u"B"_qs, 1);
    delete first;
    QCOMPARE(container.actions(), QList<QAction*>{second});
    QVERIFY(!container.removeAction(first));
    delete second;
    QCOMPARE(container.size(), 0);
}

void TestActions::removedActionBelongsToTheCaller()
{
    QObject owner;
    auto container = std::make_unique<ActionContainer>(nullptr);
    const std::unique_ptr<QAction> own(container->addAction(u"A"_qs, 1));
    auto* owned = new QAction(&owner);
    container->addAction(owned, 1);

    QVERIFY(container->removeAction(own.get()));
    QVERIFY(!container->removeAction(own.get()));
    QVERIFY(container->removeAction(owned));
    QCOMPARE(own->parent(), nullptr);
    QCOMPARE(owned->parent(), &owner);
    QCOMPARE(container->size(), 0);
}

void TestActions::movedActionsChangeTheirParent()
{
    QObject owner;
    QWidget widget;
    QAction stranger;
    ActionContainer container(nullptr);
    QAction* single = container.addAction(u"S"_qs, 1);
    QAction* own = container.addAction(u"A"_qs, 1);
    auto* owned = new QAction(u"B"_qs, &owner);
    container.addAction(owned, 1);

    QVERIFY(container.moveActionTo(single, widget));
    QVERIFY(!container.moveActionTo(single, widget));
    QCOMPARE(single->parent(), &widget);
    QVERIFY(widget.actions().isEmpty());

    QCOMPARE(container.moveActionsTo({owned, &stranger, own, nullptr, own}, widget),
             QList<QAction*>({owned, own}));
    QCOMPARE(widget.actions(), QList<QAction*>({owned, own}));
    QCOMPARE(own->parent(), &widget);
    QCOMPARE(owned->parent(), &owner);
    QCOMPARE(container.size(), 0);
}

void TestActions::bindingMirrorsItsOptions_data()
{
    QTest::addColumn<int>("options");

    for (int bit = 1; bit <= 0x80; bit <<= 1)
        QTest::addRow("0x%02x alone", static_cast<unsigned>(bit)) << bit;
    QTest::newRow("all") << 0xFF;
    QTest::newRow("all but checked") << 0xFD;
}

void TestActions::bindingMirrorsItsOptions()
{
    QFETCH(int, options);
    const auto has = [options](Binding::Option option) { return (options & option) != 0; };
    QAction source;
    QAction target;
    // As at the creation, so at every later change.
    const auto change = [&source](bool on, const QString& text, const QIcon& newIcon) {
        source.setCheckable(on);
        source.setEnabled(!on);
        source.setIcon(newIcon);
        source.setText(text);
        source.setToolTip(text + QChar(u'!'));
        source.setVisible(!on);
    };
    const auto verify = [&](bool on, const QString& text, const QIcon& newIcon) {
        const QAction fresh;
        QCOMPARE(target.isCheckable(), has(Binding::BindCheckable) && on);
        QCOMPARE(target.isEnabled(),
                 !(has(Binding::BindEnabled) && on) && !(has(Binding::BindVisible) && on));
        QCOMPARE(target.icon().cacheKey(), has(Binding::BindIcon) ? newIcon.cacheKey() : 0);
        QCOMPARE(target.text(), has(Binding::BindText) ? text : QString());
        QCOMPARE(target.toolTip(), has(Binding::BindToolTip) ? text + QChar(u'!')
                                   : has(Binding::BindText)  ? text
                                                             : QString());
        QCOMPARE(target.isVisible(), !(has(Binding::BindVisible) && on));
    };
    const QIcon red = icon(Qt::red);
    const QIcon blue = icon(Qt::blue);

    change(true, u"one"_qs, red);
    const Binding* binding =
        Binding::create(source, target, Binding::Options(QFlag(options)), nullptr);
    QCOMPARE(binding->parent(), &target);
    verify(true, u"one"_qs, red);
    change(false, u"two"_qs, blue);
    verify(false, u"two"_qs, blue);
}

void TestActions::bindingTriggers()
{
    QAction source;
    QAction triggered;
    QAction described;
    QSignalSpy triggers(&triggered, &QAction::triggered);
    QSignalSpy others(&described, &QAction::triggered);
    Binding::create(source, triggered, Binding::BindTriggered, nullptr);
    Binding::create(source, described, Binding::BindText, nullptr);
    source.trigger();
    source.trigger();
    QCOMPARE(triggers.size(), 2);
    QCOMPARE(others.size(), 0);
}

void TestActions::checkedBindingSetsAndTriggers()
{
    QAction source;
    QAction plain;
    QAction* target = checkable(&source);
    QSignalSpy toggles(target, &QAction::toggled);
    QSignalSpy triggers(target, &QAction::triggered);
    source.setCheckable(true);
    source.setChecked(true);
    QObject parent;
    const Binding* binding = Binding::create(source, *target, Binding::BindChecked, &parent);
    QCOMPARE(binding->parent(), &parent);
    QVERIFY(target->isChecked());

    source.setChecked(false);
    QVERIFY(!target->isChecked());
    QCOMPARE(triggers.size(), 0);
    QCOMPARE(toggles.size(), 2);
    // The trigger comes after the toggle and turns the target once more.
    source.trigger();
    QVERIFY(source.isChecked());
    QVERIFY(!target->isChecked());
    QCOMPARE(triggers.size(), 1);
    QCOMPARE(toggles.size(), 4);
}

void TestActions::bindingsInBothDirectionsComeToRest()
{
    QAction first;
    QAction second;
    const auto options = Binding::BindAll & ~(Binding::BindTriggered | Binding::BindChecked);
    Binding::create(first, second, options, nullptr);
    Binding::create(second, first, options, nullptr);
    const QIcon red = icon(Qt::red);
    first.setIcon(red);
    second.setText(u"text"_qs);
    QCOMPARE(second.icon().cacheKey(), red.cacheKey());
    QCOMPARE(first.text(), u"text"_qs);
}

void TestActions::bindingEndsWithEitherAction()
{
    for (const bool sourceEnds : {true, false}) {
        QObject parent;
        auto source = std::make_unique<QAction>();
        auto target = std::make_unique<QAction>();
        const QPointer<Binding> binding = Binding::create(*source, *target, &parent);
        (sourceEnds ? source : target).reset();
        // The binding ends a little later; what is left changes before that.
        QAction& left = sourceEnds ? *target : *source;
        left.setText(u"left"_qs);
        left.setCheckable(true);
        left.trigger();
        QVERIFY(binding);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!binding);
    }
}

void TestActions::guardKeepsOneChecked()
{
    QObject owner;
    QList<QAction*> actions{checkable(&owner), checkable(&owner), checkable(&owner)};
    QSignalSpy toggles(actions[0], &QAction::toggled);
    const EnsureAtLeastOneActionIsCheckedHandler guard(actions, nullptr);
    const auto checked = [&actions] {
        QString states;
        for (const QAction* action : actions)
            states += action->isChecked() ? u'x' : u'-';
        return states;
    };
    QCOMPARE(checked(), u"x--"_qs);
    actions[0]->trigger();
    QCOMPARE(checked(), u"x--"_qs);
    QCOMPARE(toggles, QList<QVariantList>({{true}, {false}, {true}}));
    actions[2]->trigger();
    actions[0]->trigger();
    QCOMPARE(checked(), u"--x"_qs);
    actions[2]->setChecked(false);
    QCOMPARE(checked(), u"--x"_qs);

    QList<QAction*> second{checkable(&owner), checkable(&owner, true)};
    const EnsureAtLeastOneActionIsCheckedHandler leavesAlone(second, nullptr);
    QVERIFY(!second[0]->isChecked());
    const EnsureAtLeastOneActionIsCheckedHandler empty({}, nullptr);
}

void TestActions::guardSurvivesItsActionsAndItsEnd()
{
    QObject owner;
    QAction* first = checkable(&owner);
    QAction* second = checkable(&owner);
    auto* guard = new EnsureAtLeastOneActionIsCheckedHandler({first, second, nullptr}, &owner);
    delete first;
    second->setChecked(true);
    second->setChecked(false);
    QVERIFY(second->isChecked());
    // Whoever hears of the restored state may end the guard.
    connect(second, &QAction::toggled, this, [&guard](bool on) {
        if (on) {
            delete guard;
            guard = nullptr;
        }
    });
    second->setChecked(false);
    QVERIFY(!guard);
    second->setChecked(false);
    QVERIFY(!second->isChecked());
}

QTEST_MAIN(TestActions)
#include "tst_actions.moc"

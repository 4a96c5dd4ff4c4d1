#include <VLBase/qthelpers/actionactionbinding.h>
#include <VLBase/qthelpers/actioncontainer.h>
#include <VLBase/qthelpers/createseparator.h>
#include <VLBase/qthelpers/ensureatleastoneactionischecked.h>

#include <QAction>
#include <QIcon>
#include <QPixmap>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <memory>

using namespace QActionHelpers;
using Binding = ActionActionBinding;
using Guard = EnsureAtLeastOneActionIsCheckedHandler;

namespace {

/// The letters of actions; "|" is a separator.
QString textsOf(const QList<QAction*>& actions)
{
    QString texts;
    for (const QAction* action : actions)
        texts += action->isSeparator() ? QStringLiteral("|") : action->text();
    return texts;
}

QIcon icon(Qt::GlobalColor colour)
{
    QPixmap pixmap(4, 4);
    pixmap.fill(colour);
    return QIcon(pixmap);
}

QAction* checkable(QObject* parent)
{
    auto* action = new QAction(parent);
    action->setCheckable(true);
    return action;
}

} // namespace

class TestActions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rolesSelectActions()
    {
        // The digit behind each letter is its role.
        const std::tuple<QString, int, bool, QString> cases[] = {
            {u"A1|B2|C1"_qs, 1, true, u"A||C"_qs},  {u"A1|B2|C1"_qs, 1, false, u"AC"_qs},
            {u"A1|B2|C1"_qs, 2, true, u"B"_qs},     {u"|A1|B0|"_qs, 0, true, u"|A|B|"_qs},
            {u"|A1|B0|C0|"_qs, 0, false, u"BC"_qs}, {u"|A1|"_qs, -1, false, QString()},
        };
        for (const auto& [plan, role, withSeparators, selected] : cases) {
            ActionContainer container(nullptr);
            for (const QChar c : plan) {
                if (c == u'|')
                    container.addSeparator();
                else if (c.isLetter())
                    container.addAction(QString(c), plan[plan.indexOf(c) + 1].digitValue());
            }
            const int all = container.size();
            QCOMPARE(textsOf(container.actions(role, withSeparators)), selected);
            QCOMPARE(container.count(role, withSeparators), selected.size());
            QWidget widget;
            QCOMPARE(textsOf(container.moveActionsTo(widget, role, withSeparators)), selected);
            QCOMPARE(textsOf(widget.actions()), selected);
            QCOMPARE(container.size(), all - selected.size());
        }
    }

    void containerOwnsOrphansOnly()
    {
        constexpr char roleProperty[] = "QActionHelpers_ActionContainer_actionRole";
        QObject owner;
        QWidget widget;
        ActionContainer container(nullptr);
        const auto orphan = std::make_unique<QAction>();
        auto* owned = new QAction(&owner);
        QAction* separator = createSeparator(&owner);
        QCOMPARE(container.addAction(nullptr, 3), &container);
        QCOMPARE(container.addActions({orphan.get(), nullptr, owned}, 3), &container);
        container.addAction(separator, 3);
        QAction* made = container.addAction(icon(Qt::red), u"made"_qs, 4);
        QAction* single = container.addAction(u"single"_qs, 4);
        QCOMPARE(container.size(), 5);
        QCOMPARE(container.actions(3, true), QList<QAction*>({orphan.get(), owned}));
        QVERIFY(orphan->parent() == &container && made->parent() == &container);
        QVERIFY(owned->parent() == &owner && !made->icon().isNull());
        QCOMPARE(owned->property(roleProperty), QVariant(3));
        QVERIFY(!separator->property(roleProperty).isValid());

        QVERIFY(container.removeAction(orphan.get()) && !container.removeAction(orphan.get()));
        QVERIFY(container.removeAction(separator));
        QVERIFY(!orphan->parent() && separator->parent() == &owner);
        QVERIFY(container.moveActionTo(single, widget) && !container.moveActionTo(single, widget));
        QVERIFY(single->parent() == &widget && widget.actions().isEmpty());
        const QList<QAction*> moved{owned, made};
        QCOMPARE(container.moveActionsTo({owned, single, made, nullptr, made}, widget), moved);
        QCOMPARE(widget.actions(), moved);
        QVERIFY(made->parent() == &widget && owned->parent() == &owner);
        QCOMPARE(container.size(), 0);
    }

    void endedActionLeavesTheContainer()
    {
        QObject owner;
        ActionContainer container(nullptr);
        auto* first = new QAction(&owner);
        int sizeAtTheEnd = -1; // as a slot sees it that was there before the container
        connect(first, &QObject::destroyed, this, [&] { sizeAtTheEnd = container.count(1, true); });
        container.addAction(first, 1)->addAction(first, 1);
        QAction* second = container.addAction(u"B"_qs, 1);
        delete first;
        QCOMPARE(sizeAtTheEnd, 1);
        QCOMPARE(container.actions(), QList<QAction*>{second});
        QVERIFY(!container.removeAction(first) && !container.removeAction(nullptr));
        delete second;
        QCOMPARE(container.size(), 0);
    }

    void bindingMirrorsItsOptions()
    {
        const QIcon icons[] = {icon(Qt::red), icon(Qt::blue)};
        for (const int options : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xFD, 0xFF}) {
            const auto has = [options](Binding::Option option) { return (options & option) != 0; };
            QAction source;
            QAction target;
            const Binding* binding = nullptr;
            // As at the creation, so at every later change.
            for (const bool on : {true, false}) {
                const QString text = on ? u"one"_qs : u"two"_qs;
                source.setCheckable(on);
                source.setEnabled(!on);
                source.setIcon(icons[on]);
                source.setText(text);
                source.setToolTip(text + u'!');
                source.setVisible(!on);
                if (!binding)
                    binding = Binding::create(source, target, Binding::Options(QFlag(options)));
                QCOMPARE(binding->parent(), &target);
                const QString shownText = has(Binding::BindText) ? text : QString();
                const bool visible = !(has(Binding::BindVisible) && on);
                const QVariantList expected{has(Binding::BindCheckable) && on,
                                            visible && !(has(Binding::BindEnabled) && on),
                                            has(Binding::BindIcon) ? icons[on].cacheKey() : 0,
                                            shownText,
                                            has(Binding::BindToolTip) ? text + u'!' : shownText,
                                            visible};
                QCOMPARE(QVariantList({target.isCheckable(), target.isEnabled(),
                                       target.icon().cacheKey(), target.text(), target.toolTip(),
                                       target.isVisible()}),
                         expected);
            }
        }
    }

    void bindingTriggersAndChecks()
    {
        QAction source;
        QAction described;
        QAction triggered;
        QObject parent;
        QAction* checked = checkable(&source);
        source.setCheckable(true);
        source.setChecked(true);
        QSignalSpy ofDescribed(&described, &QAction::triggered);
        QSignalSpy ofTriggered(&triggered, &QAction::triggered);
        QSignalSpy triggers(checked, &QAction::triggered);
        QSignalSpy toggles(checked, &QAction::toggled);
        Binding::create(source, described, Binding::BindText);
        Binding::create(source, triggered, Binding::BindTriggered);
        QCOMPARE(Binding::create(source, *checked, Binding::BindChecked, &parent)->parent(),
                 &parent);
        QVERIFY(checked->isChecked());

        source.setChecked(false);
        QVERIFY(!checked->isChecked());
        QVERIFY(triggers.size() == 0 && toggles.size() == 2);
        // The trigger comes after the toggle and turns the target once more.
        source.trigger();
        QVERIFY(source.isChecked() && !checked->isChecked());
        QVERIFY(triggers.size() == 1 && toggles.size() == 4);
        QVERIFY(ofTriggered.size() == 1 && ofDescribed.size() == 0);
    }

    void bindingsInBothDirectionsComeToRest()
    {
        QAction first;
        QAction second;
        const auto options = Binding::BindAll & ~(Binding::BindTriggered | Binding::BindChecked);
        Binding::create(first, second, options);
        Binding::create(second, first, options);
        first.setIcon(icon(Qt::red));
        second.setText(u"text"_qs);
        QCOMPARE(second.icon().cacheKey(), first.icon().cacheKey());
        QCOMPARE(first.text(), u"text"_qs);
    }

    void bindingEndsWithEitherAction()
    {
        for (const bool sourceEnds : {true, false}) {
            QObject parent;
            auto source = std::make_unique<QAction>();
            auto target = std::make_unique<QAction>();
            const QPointer<Binding> binding = Binding::create(*source, *target, &parent);
            QAction& left = sourceEnds ? *target : *source;
            // In the midst of a change, after which what is left changes again.
            connect(target.get(), &QAction::changed, this,
                    [&] { (sourceEnds ? source : target).reset(); });
            source->setText(u"last"_qs);
            QVERIFY(!source || !target);
            left.setText(u"left"_qs);
            left.setCheckable(true);
            left.trigger();
            QVERIFY(binding);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(!binding);
        }
    }

    void guardKeepsOneChecked()
    {
        QObject owner;
        QAction* a = checkable(&owner);
        QAction* b = checkable(&owner);
        QSignalSpy toggles(a, &QAction::toggled);
        const Guard guard({a, b}, nullptr);
        QVERIFY(a->isChecked() && !b->isChecked());
        a->trigger();
        QVERIFY(a->isChecked() && !b->isChecked());
        QCOMPARE(toggles, QList<QVariantList>({{true}, {false}, {true}}));
        b->trigger();
        a->trigger();
        b->setChecked(false);
        QVERIFY(!a->isChecked() && b->isChecked());
        // Whoever hears of the restored state may throw.
        const auto thrower = connect(b, &QAction::toggled, &owner, [](bool on) {
            if (on)
                throw std::runtime_error("no");
        });
        for (int again = 0; again < 2; ++again) {
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, b->setChecked(false));
            QVERIFY(b->isChecked());
        }
        disconnect(thrower);
        // QtGui cleans nothing up when an exception passes: its reference to the action stays, and
        // is no leak of ours.
        [[maybe_unused]] static const auto* kept = new QPointer<QAction>(b);
        const Guard leavesAlone({a, b}, nullptr);
        QVERIFY(!a->isChecked() && b->isChecked());
        const Guard empty({}, nullptr);
    }

    void guardSurvivesItsActionsAndItsEnd()
    {
        QObject owner;
        QAction* first = checkable(&owner);
        QAction* second = checkable(&owner);
        // A slot that was there before the guard, and makes it look at its actions.
        connect(first, &QObject::destroyed, this, [second] {
            second->setChecked(true);
            second->setChecked(false);
        });
        auto* guard = new Guard({first, second, nullptr}, &owner);
        delete first;
        QVERIFY(second->isChecked());
        // Whoever hears of the restored state may end the guard.
        connect(second, &QAction::toggled, this, [&guard](bool on) {
            if (on)
                delete std::exchange(guard, nullptr);
        });
        second->setChecked(false);
        QVERIFY(!guard);
        second->setChecked(false);
        QVERIFY(!second->isChecked());
    }
};

QTEST_MAIN(TestActions)
#include "tst_actions.moc"

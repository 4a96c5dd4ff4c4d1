#include <VLBase/qthelpers/actioncontainer.h>
#include <VLBase/qthelpers/q4menu.h>

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QWidgetAction>

#include <functional>

namespace {

void fill(QMenu& menu, int count, bool isCheckable = false)
{
    for (int i = 0; i < count; ++i)
        menu.addAction(QStringLiteral("Entry &%1").arg(i))->setCheckable(isCheckable);
}

QStringList visible(const QMenu& menu)
{
    QStringList texts;
    for (const QAction* action : menu.actions()) {
        if (action->isVisible() && !qobject_cast<const QWidgetAction*>(action))
            texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return texts;
}

QLineEdit* fieldOf(const QMenu& menu)
{
    return menu.findChild<QLineEdit*>();
}

void show(QMenu& menu)
{
    menu.popup(QPoint(10, 10));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
}

void click(QMenu& menu, QAction* action)
{
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(action).center());
}

} // namespace

class TestQ4Menu : public QObject
{
    Q_OBJECT

private slots:
    void staysOpenOverToggles()
    {
        for (const bool keeps : {true, false}) {
            Q4Menu menu;
            QVERIFY(menu.keepsOpen() && menu.toolTipsVisible());
            menu.setKeepsOpen(keeps);
            fill(menu, 3, true);
            QAction* const action = menu.actions().at(1);
            const auto byKey = [&](Qt::Key key) {
                menu.setActiveAction(action);
                QTest::keyClick(&menu, key);
            };
            const std::function<void()> ways[] = {
                [&] { click(menu, action); }, [&] { byKey(Qt::Key_Return); },
                [&] { byKey(Qt::Key_Space); }, [&] { QTest::keyClick(&menu, Qt::Key_1); }};
            for (const auto& way : ways) {
                // By itself a menu takes the space bar in some styles only.
                if (!keeps && &way == &ways[2])
                    continue;
                show(menu);
                QSignalSpy toggled(action, &QAction::toggled);
                way();
                QCOMPARE(toggled.size(), 1);
                QCOMPARE(menu.isVisible(), keeps);
                if (keeps)
                    way();
                QCOMPARE(toggled.size(), keeps ? 2 : 1);
                menu.hide();
            }
        }
    }

    void closesOverOthers()
    {
        Q4Menu menu;
        fill(menu, 2);
        QAction* const off = menu.addAction(QStringLiteral("off"));
        off->setCheckable(true);
        off->setEnabled(false);
        show(menu);
        QSignalSpy toggled(off, &QAction::toggled);
        click(menu, off);
        QVERIFY(toggled.isEmpty() && menu.isVisible());
        // Let go here, but pressed elsewhere.
        QAction* const on = menu.actions().at(0);
        on->setCheckable(true);
        QTest::mouseRelease(&menu, Qt::LeftButton, {}, menu.actionGeometry(on).center());
        QVERIFY(!on->isChecked());
        QSignalSpy triggered(menu.actions().at(1), &QAction::triggered);
        click(menu, menu.actions().at(1));
        QVERIFY(!menu.isVisible());
        QCOMPARE(triggered.size(), 1);
    }

    void headsOnlyWhileShown()
    {
        Q4Menu menu(QStringLiteral("title"));
        QCOMPARE(menu.title(), QStringLiteral("title"));
        menu.setHeading(QStringLiteral("Antennas & masts"));
        menu.setFilterThreshold(2);
        fill(menu, 2);
        for (int round = 0; round < 2; ++round) {
            show(menu);
            QCOMPARE(menu.actions().size(), 4);
            auto* const first = qobject_cast<QWidgetAction*>(menu.actions().constFirst());
            QVERIFY(first && !first->isEnabled());
            QCOMPARE(qobject_cast<QLabel*>(first->defaultWidget())->text(), menu.heading());
            menu.hide();
            QCOMPARE(menu.actions().size(), 2);
        }
    }

    void filterComesFromTheThresholdOn()
    {
        const std::tuple<int, int, bool> cases[] = {
            {20, 20, true}, {19, 20, false}, {5, 5, true}, {30, 0, false}, {30, -1, false}};
        for (const auto& [entries, threshold, hasField] : cases) {
            Q4Menu menu;
            QCOMPARE(menu.filterThreshold(), 20);
            menu.setFilterThreshold(threshold);
            fill(menu, entries);
            menu.addSeparator();
            menu.addAction(QStringLiteral("hidden"))->setVisible(false);
            show(menu);
            QCOMPARE(fieldOf(menu) != nullptr, hasField);
        }
        // One that is filled when it is about to show.
        Q4Menu late;
        connect(&late, &QMenu::aboutToShow, &late, [&] { fill(late, 25); });
        show(late);
        QVERIFY(fieldOf(late));
    }

    void typingNarrows()
    {
        Q4Menu menu;
        menu.setFilterThreshold(3);
        fill(menu, 3);
        menu.addSeparator();
        QAction* const off = menu.addAction(QStringLiteral("Stop &2 && go\tCtrl+2"));
        off->setEnabled(false);
        QMenu* const below = menu.addMenu(QStringLiteral("more 2"));
        below->addAction(QStringLiteral("x"));
        menu.addAction(QStringLiteral("hidden 2"))->setVisible(false);
        const QStringList all = visible(menu);
        show(menu);
        QVERIFY(fieldOf(menu)->hasFocus());
        QTest::keyClicks(fieldOf(menu), QStringLiteral("2"));
        QCOMPARE(visible(menu),
                 QStringList({QStringLiteral("Entry &2"), QStringLiteral("Stop &2 && go\tCtrl+2"),
                              QStringLiteral("more 2")}));
        QCOMPARE(menu.activeAction(), menu.actions().at(3));
        QTest::keyClicks(&menu, QStringLiteral(" & GO"));
        QCOMPARE(visible(menu), QStringList(QStringLiteral("Stop &2 && go\tCtrl+2")));
        QTest::keyClick(&menu, Qt::Key_Backspace);
        QTest::keyClicks(&menu, QStringLiteral("zz"));
        QVERIFY(visible(menu).isEmpty() && !menu.activeAction());
        QTest::keyClick(fieldOf(menu), Qt::Key_Return);
        QTest::keyClick(fieldOf(menu), Qt::Key_Escape);
        QCOMPARE(visible(menu), all);
        QVERIFY(menu.isVisible());

        QTest::keyClicks(&menu, QStringLiteral("entry"));
        QTest::keyClick(fieldOf(menu), Qt::Key_Down);
        QTest::keyClick(fieldOf(menu), Qt::Key_Down);
        QTest::keyClick(fieldOf(menu), Qt::Key_Down);
        QCOMPARE(menu.activeAction()->text(), QStringLiteral("Entry &0"));
        QTest::keyClick(fieldOf(menu), Qt::Key_Up);
        QSignalSpy triggered(menu.activeAction(), &QAction::triggered);
        QCOMPARE(menu.activeAction()->text(), QStringLiteral("Entry &2"));
        QTest::keyClick(fieldOf(menu), Qt::Key_Return);
        QCOMPARE(triggered.size(), 1);
        QVERIFY(!menu.isVisible());
        QCOMPARE(visible(menu), all);
    }

    void changesWhileItIsOpen()
    {
        Q4Menu menu;
        menu.setFilterThreshold(3);
        fill(menu, 4, true);
        show(menu);
        QTest::keyClicks(&menu, QStringLiteral("1"));
        QTest::keyClick(fieldOf(menu), Qt::Key_Return);
        QVERIFY(menu.isVisible());
        QVERIFY(!visible(menu).contains(QStringLiteral("Entry &0")));
        menu.addAction(QStringLiteral("other"));
        menu.addAction(QStringLiteral("one 1"));
        QCOMPARE(visible(menu), QStringList({QStringLiteral("Entry &1"), QStringLiteral("one 1")}));
        delete menu.actions().at(1); // hidden at the moment
        menu.hide();
        QCOMPARE(visible(menu).size(), 5);
    }

    void takesFromAContainer()
    {
        QActionHelpers::ActionContainer container;
        for (int i = 0; i < 25; ++i)
            container.addAction(QStringLiteral("a%1").arg(i));
        Q4Menu menu;
        QCOMPARE(container.moveActionsTo(menu).size(), 25);
        show(menu);
        QTest::keyClicks(&menu, QStringLiteral("a24"));
        QCOMPARE(visible(menu), QStringList(QStringLiteral("a24")));
    }
};

QTEST_MAIN(TestQ4Menu)

#include "tst_q4menu.moc"

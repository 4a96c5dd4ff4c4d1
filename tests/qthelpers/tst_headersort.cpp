#include <VLBase/qthelpers/headersortproxymodel.h>

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QHeaderView>
#include <QLocale>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>

#include <cmath>
#include <random>

namespace {

using Key = HeaderSortProxyModel::SortKey;

void appendRow(QStandardItemModel& model, const QVariantList& values)
{
    QList<QStandardItem*> items;
    for (const QVariant& value : values) {
        items << new QStandardItem;
        items.last()->setData(value, Qt::DisplayRole);
    }
    model.appendRow(items);
}

QString column(const QAbstractItemModel& model, int column = 0)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts << model.index(row, column).data().toString();
    return texts.join(u'|');
}

void click(QTableView& view, int section, Qt::KeyboardModifiers modifiers = {})
{
    QHeaderView* const header = view.horizontalHeader();
    const QPoint place(header->sectionViewportPosition(section) + 5, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers, place);
}

} // namespace

class TestHeaderSort : public QObject
{
    Q_OBJECT

private slots:
    // Rows as they come, and in order; the empty ones last in both directions.
    void ordersValues_data()
    {
        QTest::addColumn<QVariantList>("values");
        const QDate day(2026, 11, 23);
        const auto row = [](const char* name, const QVariantList& values) {
            QTest::newRow(name) << values;
        };
        row("natural", {QStringLiteral("ch 1"), QStringLiteral("CH 9"), QStringLiteral("ch 10"),
                        QStringLiteral("ch 010b"), QStringLiteral("Ch 11")});
        row("long numbers",
            {QStringLiteral("a99999999999999999998"), QStringLiteral("a99999999999999999999"),
             QStringLiteral("a100000000000000000000")});
        row("numbers", {-3.5, -3, 0u, 0.5, 9, 10ll, std::numeric_limits<qint64>::max() - 1,
                        std::numeric_limits<qint64>::max(), 1.8e19});
        row("dates", {QDate(1900, 1, 1), day, day.startOfDay().addSecs(1), day.addDays(1)});
        row("times", {QTime(0, 0), QTime(9, 0), QTime(10, 0)});
        row("kinds", {5, day, QTime(1, 0), QStringLiteral("1")});
    }

    void ordersValues()
    {
        QFETCH(QVariantList, values);
        const QLocale before;
        for (const QLocale& locale : {QLocale::c(), QLocale(QStringLiteral("en_US"))}) {
            QLocale::setDefault(locale);
            QVariantList mixed = values;
            mixed << QVariant() << QString() << std::nan("") << QDate();
            QVariantList expected = values;
            for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                std::mt19937 random(5);
                for (int round = 0; round < 5; ++round) {
                    std::shuffle(mixed.begin(), mixed.end(), random);
                    QStandardItemModel model;
                    // Few rows are compared one by one, many by ranks.
                    for (int times = 0; times < (round == 0 ? 1 : 40); ++times) {
                        for (const QVariant& value : qAsConst(mixed))
                            appendRow(model, {value});
                    }
                    HeaderSortProxyModel proxy;
                    proxy.setSourceModel(&model);
                    proxy.sort(0, order);
                    const auto times = static_cast<int>(model.rowCount() / mixed.size());
                    for (int row = 0; row < values.size() * times; ++row)
                        QCOMPARE(proxy.index(row, 0).data(), expected[row / times]);
                }
                std::reverse(expected.begin(), expected.end());
            }
        }
        QLocale::setDefault(before);
    }

    void followsTheSource()
    {
        QStandardItemModel model(0, 2);
        HeaderSortProxyModel proxy;
        const QAbstractItemModelTester tester(
            &proxy, QAbstractItemModelTester::FailureReportingMode::Fatal);
        proxy.setSourceModel(&model);
        proxy.setSortKeys({{0, Qt::DescendingOrder}, {1, Qt::AscendingOrder}});
        for (const char* text : {"b1", "a2", "b3", "a1", "b2"})
            appendRow(model, {QString(QLatin1Char(text[0])), QString(QLatin1Char(text[1]))});
        QCOMPARE(column(proxy) + u' ' + column(proxy, 1), QStringLiteral("b|b|b|a|a 1|2|3|1|2"));
        const QPersistentModelIndex kept = proxy.index(4, 1);
        model.item(1, 1)->setText(QStringLiteral("0")); // the second key of "a2"
        QCOMPARE(column(proxy, 1), QStringLiteral("1|2|3|0|1"));
        QCOMPARE(kept.row(), 3);
        model.item(3, 0)->setText(QStringLiteral("c"));
        model.removeRow(0);
        appendRow(model, {QStringLiteral("b"), QString()});
        QCOMPARE(column(proxy) + u' ' + column(proxy, 1), QStringLiteral("c|b|b|b|a 1|2|3||0"));
        proxy.setSortKeys({});
        QCOMPARE(column(proxy), column(model));
    }

    void isStable()
    {
        QStandardItemModel model;
        for (int i = 0; i < 300; ++i)
            appendRow(model, {i % 3, i});
        HeaderSortProxyModel proxy;
        proxy.setSourceModel(&model);
        for (const auto& keys :
             {QList<Key>{{1, Qt::DescendingOrder}}, QList<Key>{{0, Qt::AscendingOrder}},
              QList<Key>{{0, Qt::DescendingOrder}}})
            proxy.setSortKeys(keys);
        for (int row = 0; row < 300; ++row)
            QCOMPARE(proxy.index(row, 1).data().toInt(), row % 100 * 3 + 2 - row / 100);
    }

    void comparesByTheCallers()
    {
        QStandardItemModel model;
        for (const char* text : {"mid", "", "low", "high"})
            appendRow(model, {QString::fromLatin1(text)});
        HeaderSortProxyModel proxy;
        proxy.setSourceModel(&model);
        proxy.sort(0);
        proxy.setCompare(0, [](const QVariant& a, const QVariant& b) {
            const QString rising = QStringLiteral("low mid high");
            return static_cast<int>(rising.indexOf(a.toString()) - rising.indexOf(b.toString()));
        });
        QCOMPARE(column(proxy), QStringLiteral("low|mid|high|"));
        proxy.sort(0, Qt::DescendingOrder);
        QCOMPARE(column(proxy), QStringLiteral("high|mid|low|"));
        proxy.setCompare(0, nullptr);
        QCOMPARE(column(proxy), QStringLiteral("mid|low|high|"));
    }

    void clicks()
    {
        for (const bool viewSorts : {false, true}) {
            QStandardItemModel model(3, 3);
            HeaderSortProxyModel proxy;
            proxy.setSourceModel(&model);
            QTableView view;
            view.setModel(&proxy);
            view.setSortingEnabled(viewSorts);
            proxy.setSortKeys({});
            QSignalSpy changed(&proxy, &HeaderSortProxyModel::sortKeysChanged);
            QHeaderView* const header = view.horizontalHeader();
            proxy.setHeader(header);
            view.resize(600, 200);
            view.show();
            const Qt::KeyboardModifiers none, shift = Qt::ShiftModifier;
            const Qt::SortOrder up = Qt::AscendingOrder, down = Qt::DescendingOrder;
            const std::tuple<int, Qt::KeyboardModifiers, QList<Key>> steps[] = {
                {1, none, {{1, up}}},
                {1, none, {{1, down}}},
                {1, none, {}},
                {0, shift, {{0, up}}},
                {2, shift, {{0, up}, {2, up}}},
                {0, shift, {{0, down}, {2, up}}},
                {1, shift, {{0, down}, {2, up}, {1, up}}},
                {0, shift, {{2, up}, {1, up}}},
                {2, none, {{2, up}}},
                {0, none, {{0, up}}},
            };
            for (const auto& [section, modifiers, keys] : steps) {
                click(view, section, modifiers);
                QCOMPARE(proxy.sortKeys().size(), keys.size());
                QVERIFY(proxy.sortKeys() == keys);
                QCOMPARE(header->isSortIndicatorShown(), keys.size() == 1);
                for (int at = 0; at < 3; ++at) {
                    const bool isKey = std::any_of(
                        keys.begin(), keys.end(), [&](const Key& key) { return key.column == at; });
                    QCOMPARE(proxy.headerData(at, Qt::Horizontal, Qt::DecorationRole).isValid(),
                             isKey && keys.size() > 1);
                }
            }
            if (!viewSorts)
                QCOMPARE(changed.size(), qsizetype(std::size(steps)));
            proxy.setHeader(nullptr);
            changed.clear();
            view.setSortingEnabled(false);
            click(view, 1);
            QVERIFY(changed.isEmpty() && !proxy.header());
        }
    }

    void state()
    {
        HeaderSortProxyModel proxy;
        const QList<Key> keys{{7, Qt::DescendingOrder}, {0, Qt::AscendingOrder}};
        proxy.setSortKeys(keys + QList<Key>{{-1, Qt::AscendingOrder}, {7, Qt::AscendingOrder}});
        QVERIFY(proxy.sortKeys() == keys);
        const QByteArray state = proxy.saveState();
        proxy.setSortKeys({{1, Qt::AscendingOrder}});
        for (qsizetype size = 0; size < state.size(); ++size)
            QVERIFY(!proxy.restoreState(state.left(size)));
        QByteArray damaged = state;
        damaged[damaged.size() - 1] = 2;
        QVERIFY(!proxy.restoreState(damaged) && !proxy.restoreState(state + 'x'));
        QCOMPARE(proxy.sortKeys().size(), 1);
        QVERIFY(proxy.restoreState(state) && proxy.sortKeys() == keys);
        QVERIFY(proxy.restoreState(HeaderSortProxyModel().saveState()));
        QVERIFY(proxy.sortKeys().isEmpty());
    }
};

QTEST_MAIN(TestHeaderSort)

#include "tst_headersort.moc"

#include "headersortproxymodel.h"

#include "internal/sortvalue.h"

#include <QDataStream>
#include <QGuiApplication>
#include <QHeaderView>
#include <QIODevice>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QScopeGuard>
#include <QSignalBlocker>

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

using vlbase::qthelpers::SortValue;
using vlbase::qthelpers::TextOrder;

namespace {

using SortKey = HeaderSortProxyModel::SortKey;

constexpr quint32 stateMark = 0x56485331; // "VHS1"

qsizetype placeOf(const QList<SortKey>& keys, int column)
{
    const auto found = std::find_if(keys.begin(), keys.end(),
                                    [column](const SortKey& key) { return key.column == column; });
    return found == keys.end() ? -1 : found - keys.begin();
}

/// The next round of a key: ascending, descending, none.
void turn(QList<SortKey>& keys, int column)
{
    const qsizetype place = placeOf(keys, column);
    if (place < 0)
        keys.append({column, Qt::AscendingOrder});
    else if (keys[place].order == Qt::AscendingOrder)
        keys[place].order = Qt::DescendingOrder;
    else
        keys.removeAt(place);
}

/// An arrow and the place of the key, as the style's own arrow has no number.
QIcon keyIcon(const QHeaderView& header, Qt::SortOrder order, qsizetype place)
{
    QFont font = header.font();
    font.setPointSizeF(font.pointSizeF() * 0.8);
    const QString text =
        QChar(order == Qt::AscendingOrder ? 0x25B4 : 0x25BE) + QString::number(place + 1);
    const QFontMetrics metrics(font);
    const QSize size(metrics.horizontalAdvance(text) + 2, metrics.height());
    QPixmap pixmap(size * header.devicePixelRatioF());
    pixmap.setDevicePixelRatio(header.devicePixelRatioF());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setFont(font);
    painter.setPen(header.palette().color(QPalette::ButtonText));
    painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, text);
    return QIcon(pixmap);
}

} // namespace

/// What decides the order of rows.
class HeaderSortProxyModel::Order
{
public:
    QList<SortKey> keys;
    std::map<int, Compare> compares;
    TextOrder texts;
    std::vector<int> ranks; ///< of the source's rows, while all of them are sorted

    int compared(const QModelIndex& left, const QModelIndex& right, int role) const
    {
        for (const SortKey& key : keys) {
            const Cell a(left.siblingAtColumn(key.column).data(role), *this, key.column);
            const Cell b(right.siblingAtColumn(key.column).data(role), *this, key.column);
            if (const int result = a.compared(b, key.order, texts))
                return result;
        }
        return 0;
    }

    /// Compares each value in its quick form, which is made once for each row.
    void rank(const QAbstractItemModel& model, int role)
    {
        const auto count = static_cast<std::size_t>(model.rowCount());
        std::vector<std::vector<Cell>> columns;
        for (const SortKey& key : std::as_const(keys)) {
            std::vector<Cell>& cells = columns.emplace_back();
            cells.reserve(count);
            for (int row = 0; row < static_cast<int>(count); ++row)
                cells.emplace_back(model.index(row, key.column).data(role), *this, key.column);
        }
        std::vector<std::size_t> rows(count);
        std::iota(rows.begin(), rows.end(), std::size_t{0});
        std::stable_sort(rows.begin(), rows.end(), [&](std::size_t a, std::size_t b) {
            for (std::size_t key = 0; key < columns.size(); ++key) {
                const Qt::SortOrder order = keys[static_cast<qsizetype>(key)].order;
                if (const int result = columns[key][a].compared(columns[key][b], order, texts))
                    return result < 0;
            }
            return false;
        });
        ranks.resize(count);
        for (std::size_t place = 0; place < count; ++place)
            ranks[rows[place]] = static_cast<int>(place);
    }

private:
    /// One value in the form that its column is compared in.
    class Cell
    {
    public:
        Cell(const QVariant& value, const Order& order, int column)
            : m_value(value, order.texts)
        {
            const auto found = order.compares.find(column);
            if (found == order.compares.end())
                return;
            m_compare = &found->second;
            m_variant = value;
        }

        int compared(const Cell& other, Qt::SortOrder order, const TextOrder& textOrder) const
        {
            if (m_value.isEmpty() || other.m_value.isEmpty())
                return int(m_value.isEmpty()) - int(other.m_value.isEmpty());
            const int result = m_compare ? (*m_compare)(m_variant, other.m_variant)
                                         : m_value.compare(other.m_value, textOrder);
            return order == Qt::AscendingOrder ? result : (result < 0) - (result > 0);
        }

    private:
        SortValue m_value;
        const Compare* m_compare = nullptr;
        QVariant m_variant; // for `m_compare`
    };
};

HeaderSortProxyModel::HeaderSortProxyModel(QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_order(std::make_unique<Order>())
{
}

HeaderSortProxyModel::~HeaderSortProxyModel() = default;

void HeaderSortProxyModel::setHeader(QHeaderView* header)
{
    if (m_header == header)
        return;
    if (m_header)
        m_header->disconnect(this);
    m_header = header;
    if (!header)
        return;
    header->setSectionsClickable(true);
    connect(header, &QHeaderView::sectionPressed, this, [this] { m_keysAtPress = m_order->keys; });
    connect(header, &QHeaderView::sectionClicked, this, &HeaderSortProxyModel::takeClick);
    showKeys();
}

QHeaderView* HeaderSortProxyModel::header() const
{
    return m_header;
}

QList<HeaderSortProxyModel::SortKey> HeaderSortProxyModel::sortKeys() const
{
    return m_order->keys;
}

void HeaderSortProxyModel::setSortKeys(const QList<SortKey>& keys)
{
    QList<SortKey> usable;
    for (const SortKey& key : keys) {
        if (key.column >= 0 && placeOf(usable, key.column) < 0)
            usable.append(key);
    }
    if (usable != m_order->keys) {
        m_order->keys = usable;
        sortAgain();
        showKeys();
        emit sortKeysChanged();
    } else {
        showKeys(); // The header may have shown something else by itself.
    }
}

void HeaderSortProxyModel::setCompare(int column, Compare compare)
{
    if (compare)
        m_order->compares[column] = std::move(compare);
    else
        m_order->compares.erase(column);
    if (placeOf(m_order->keys, column) >= 0)
        sortAgain();
}

void HeaderSortProxyModel::sort(int column, Qt::SortOrder order)
{
    setSortKeys(column < 0 ? QList<SortKey>() : QList<SortKey>{{column, order}});
}

void HeaderSortProxyModel::setSourceModel(QAbstractItemModel* model)
{
    if (sourceModel())
        disconnect(sourceModel(), &QAbstractItemModel::dataChanged, this, nullptr);
    QSortFilterProxyModel::setSourceModel(model);
    if (model) {
        // Behind the base class's own look, which knows the first key only.
        connect(model, &QAbstractItemModel::dataChanged, this, &HeaderSortProxyModel::lookAtChange);
    }
    sortAgain();
}

// The base class sorts by one column, and does nothing when it is asked for the same order again.
// So each time it is asked for the other direction, which `lessThan` turns back.
void HeaderSortProxyModel::sortAgain()
{
    const QList<SortKey>& keys = m_order->keys;
    if (keys.isEmpty()) {
        QSortFilterProxyModel::sort(-1, Qt::AscendingOrder);
        return;
    }
    m_order->texts = TextOrder(); // The default locale may be another one by now.
    const auto forget = qScopeGuard([this] { m_order->ranks = {}; });
    constexpr int fewRows = 100;
    if (sourceModel() && sourceModel()->rowCount() > fewRows)
        m_order->rank(*sourceModel(), sortRole());
    QSortFilterProxyModel::sort(keys.constFirst().column, sortOrder() == Qt::AscendingOrder
                                                              ? Qt::DescendingOrder
                                                              : Qt::AscendingOrder);
}

bool HeaderSortProxyModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const bool isTurned = sortOrder() == Qt::DescendingOrder;
    const QModelIndex& first = isTurned ? right : left;
    const QModelIndex& second = isTurned ? left : right;
    if (!m_order->ranks.empty() && !left.parent().isValid()) {
        return m_order->ranks[static_cast<std::size_t>(first.row())] <
               m_order->ranks[static_cast<std::size_t>(second.row())];
    }
    const int result = m_order->compared(first, second, sortRole());
    return result != 0 ? result < 0 : first.row() < second.row();
}

void HeaderSortProxyModel::lookAtChange(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                                        const QList<int>& roles)
{
    const QList<SortKey> further = m_order->keys.mid(1);
    const bool concernsKey = std::any_of(further.begin(), further.end(), [&](const SortKey& key) {
        return topLeft.column() <= key.column && key.column <= bottomRight.column();
    });
    if (!concernsKey || !dynamicSortFilter() || (!roles.isEmpty() && !roles.contains(sortRole())))
        return;
    for (int row = topLeft.row(); row <= bottomRight.row(); ++row) {
        if (isDisturbedAt(row, topLeft.parent())) {
            sortAgain();
            return;
        }
    }
}

bool HeaderSortProxyModel::isDisturbedAt(int sourceRow, const QModelIndex& sourceParent) const
{
    const QModelIndex row = sourceModel()->index(sourceRow, 0, sourceParent);
    const QModelIndex shown = mapFromSource(row);
    if (!shown.isValid())
        return false;
    const auto isBefore = [this](const QModelIndex& a, const QModelIndex& b) {
        const int result = m_order->compared(a, b, sortRole());
        return result != 0 ? result < 0 : a.row() < b.row();
    };
    const QModelIndex above = mapToSource(shown.siblingAtRow(shown.row() - 1));
    const QModelIndex below = mapToSource(shown.siblingAtRow(shown.row() + 1));
    return (above.isValid() && isBefore(row, above)) || (below.isValid() && isBefore(below, row));
}

void HeaderSortProxyModel::takeClick(int section)
{
    QList<SortKey> keys = std::exchange(m_keysAtPress, {});
    const bool isFurther = (QGuiApplication::keyboardModifiers() & Qt::ShiftModifier) != 0;
    if (!isFurther && (keys.size() > 1 || placeOf(keys, section) < 0))
        keys.clear();
    turn(keys, section);
    setSortKeys(keys);
}

void HeaderSortProxyModel::showKeys()
{
    if (m_header) {
        const QSignalBlocker blocker(m_header);
        const bool isOne = m_order->keys.size() == 1;
        m_header->setSortIndicatorShown(isOne);
        m_header->setSortIndicator(isOne ? m_order->keys.constFirst().column : -1,
                                   isOne ? m_order->keys.constFirst().order : Qt::AscendingOrder);
        m_header->viewport()->update();
    }
    if (columnCount() > 0)
        emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

QVariant HeaderSortProxyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const qsizetype place = placeOf(m_order->keys, section);
    if (m_header && orientation == m_header->orientation() && role == Qt::DecorationRole &&
        place >= 0 && m_order->keys.size() > 1)
        return keyIcon(*m_header, m_order->keys[place].order, place);
    return QSortFilterProxyModel::headerData(section, orientation, role);
}

QByteArray HeaderSortProxyModel::saveState() const
{
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << stateMark << static_cast<quint32>(m_order->keys.size());
    for (const SortKey& key : std::as_const(m_order->keys))
        stream << static_cast<qint32>(key.column) << static_cast<qint8>(key.order);
    return state;
}

bool HeaderSortProxyModel::restoreState(const QByteArray& state)
{
    QDataStream stream(state);
    stream.setVersion(QDataStream::Qt_6_4);
    quint32 mark = 0;
    quint32 count = 0;
    stream >> mark >> count;
    QList<SortKey> keys;
    for (quint32 i = 0; mark == stateMark && i < count && stream.status() == QDataStream::Ok; ++i) {
        qint32 column = -1;
        qint8 order = -1;
        stream >> column >> order;
        if (column < 0 || order < Qt::AscendingOrder || order > Qt::DescendingOrder ||
            placeOf(keys, column) >= 0)
            return false;
        keys.append({column, static_cast<Qt::SortOrder>(order)});
    }
    if (mark != stateMark || stream.status() != QDataStream::Ok || !stream.atEnd())
        return false;
    setSortKeys(keys);
    return true;
}

#pragma once

#include <VLBase/vlbase_export.h>

#include <QByteArray>
#include <QList>
#include <QPointer>
#include <QSortFilterProxyModel>
#include <QVariant>

#include <functional>
#include <memory>

class QHeaderView;

/// Sorts a model by the clicks on a header, by several columns where that is wanted.
///
/// A click on a section sorts by it ascending, the second one descending, the third one not at all;
/// with Shift the section becomes a further key, or goes the same round as one. More keys than one
/// are shown by an arrow and a small number each. The sections stand for the source's columns.
///
/// Values are those of `sortRole()`: numbers, dates and times by value, texts by the collation of
/// the default locale, regardless of case and with digits by their number ("ch 9" before "ch 10").
/// Numbers come before dates, those before times of day, texts behind; values that are invalid,
/// empty or not a number come last in both directions. Equal rows keep the source's order. Sorting
/// follows all changes of the source.
///
/// Belongs to the thread of its source, as every model.
class VLBASE_EXPORT HeaderSortProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    struct SortKey
    {
        int column;
        Qt::SortOrder order;
        friend bool operator==(const SortKey& a, const SortKey& b)
        {
            return a.column == b.column && a.order == b.order;
        }
    };
    /// Below 0, 0 or above 0, as the first value comes before the second, with it or behind it.
    using Compare = std::function<int(const QVariant&, const QVariant&)>;

    explicit HeaderSortProxyModel(QObject* parent = nullptr);
    ~HeaderSortProxyModel() override;

    /// The header whose clicks sort and that shows the keys; null lets go of it. It is made
    /// clickable. The view's own sorting is better left off.
    void setHeader(QHeaderView* header);
    QHeaderView* header() const;

    /// The first key decides, the next one among its equals. None: the source's order.
    QList<SortKey> sortKeys() const;
    /// Keys of a column below 0, and the second one of a column, are left out.
    void setSortKeys(const QList<SortKey>& keys);

    /// Compares the values of a column in place of the usual comparison; none: the usual one again.
    /// It is not asked about values that are invalid or empty.
    void setCompare(int column, Compare compare);

    /// The keys, for settings.
    QByteArray saveState() const;
    /// \return false, with nothing changed, for what `saveState` did not make.
    bool restoreState(const QByteArray& state);

    /// Makes the column the only key; below 0: none.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    void setSourceModel(QAbstractItemModel* model) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    void sortKeysChanged();

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    class Order;

    void sortAgain();
    void showKeys();
    void takeClick(int section);
    void lookAtChange(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                      const QList<int>& roles);
    bool isDisturbedAt(int sourceRow, const QModelIndex& sourceParent) const;

    std::unique_ptr<Order> m_order;
    QPointer<QHeaderView> m_header;
    QList<SortKey> m_keysAtPress; ///< what the header itself does at a click comes before it tells
};

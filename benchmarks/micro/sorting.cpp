// A million rows through the sorting proxy beside std::stable_sort on the bare keys.

#include "goals.h"

#include <VLBase/qthelpers/headersortproxymodel.h>

#include <QAbstractTableModel>
#include <QCollator>
#include <QLocale>

#include <algorithm>
#include <random>
#include <vector>

namespace {

constexpr int rows = 1'000'000;

std::vector<QString> texts()
{
    std::mt19937 random(11);
    std::vector<QString> result;
    result.reserve(rows);
    for (int i = 0; i < rows; ++i)
        result.push_back(
            QStringLiteral("Station %1 ch %2").arg(random() % 50).arg(random() % 100000));
    return result;
}

class Rows : public QAbstractTableModel
{
public:
    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : rows;
    }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : 1;
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(m_texts[static_cast<std::size_t>(index.row())])
                                       : QVariant();
    }

private:
    std::vector<QString> m_texts = texts();
};

void sortProxy(benchmark::State& state)
{
    Rows model;
    HeaderSortProxyModel proxy;
    proxy.setSourceModel(&model);
    for (auto _ : state) {
        proxy.sort(0);
        benchmark::DoNotOptimize(proxy.index(0, 0));
        state.PauseTiming();
        proxy.sort(-1);
        state.ResumeTiming();
    }
}
BENCHMARK(sortProxy)->Iterations(1);

void sortBareKeys(benchmark::State& state)
{
    const std::vector<QString> all = texts();
    QCollator collator{QLocale()};
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<QString> sorted = all;
        state.ResumeTiming();
        std::stable_sort(sorted.begin(), sorted.end(), collator);
        benchmark::DoNotOptimize(sorted.data());
    }
}
BENCHMARK(sortBareKeys)->Iterations(1);

const bench::Goal goals[] = {
    bench::Goal(
        "a million rows by natural texts / std::stable_sort on the bare texts", 1.5,
        [](const bench::Medians& ns) { return ns.at("sortProxy") / ns.at("sortBareKeys"); }),
};

} // namespace

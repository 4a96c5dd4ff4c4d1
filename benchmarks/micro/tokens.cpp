// Texts cut into fields, and numbers read from text.

#include "goals.h"

#include <VLBase/basetypes/token.h>

#include <QLocale>
#include <QString>
#include <QStringTokenizer>

#include <benchmark/benchmark.h>

namespace {

/// A line of 32 fields of 1 to 12 characters.
const QString& line()
{
    static const QString text = [] {
        QString fields;
        for (int i = 0; i < 32; ++i)
            fields += QString(1 + i * 7 % 12, QLatin1Char('x')) + QLatin1Char(',');
        fields.chop(1);
        return fields;
    }();
    return text;
}

constexpr int fieldCount = 32;

void fieldsByTokenizer(benchmark::State& state)
{
    const QString delimiters = QStringLiteral(",");
    for (auto _ : state) {
        Vela::Tokenizer next(line());
        for (QString token = next(delimiters); !token.isNull(); token = next(delimiters))
            benchmark::DoNotOptimize(token);
    }
    state.SetItemsProcessed(state.iterations() * fieldCount);
}
BENCHMARK(fieldsByTokenizer);

void fieldsBySplit(benchmark::State& state)
{
    for (auto _ : state) {
        for (QString token : line().split(QLatin1Char(',')))
            benchmark::DoNotOptimize(token);
    }
    state.SetItemsProcessed(state.iterations() * fieldCount);
}
BENCHMARK(fieldsBySplit);

/// The fields as texts of their own, as the two above give them.
void fieldsByQStringTokenizer(benchmark::State& state)
{
    for (auto _ : state) {
        for (const QStringView field : QStringTokenizer(line(), u',')) {
            QString token = field.toString();
            benchmark::DoNotOptimize(token);
        }
    }
    state.SetItemsProcessed(state.iterations() * fieldCount);
}
BENCHMARK(fieldsByQStringTokenizer);

void fieldsAsViews(benchmark::State& state)
{
    for (auto _ : state) {
        for (QStringView field : QStringTokenizer(line(), u','))
            benchmark::DoNotOptimize(field);
    }
    state.SetItemsProcessed(state.iterations() * fieldCount);
}
BENCHMARK(fieldsAsViews);

const QString numbers[] = {QStringLiteral("98.5"), QStringLiteral("-0.001234"),
                           QStringLiteral("433.920125"), QStringLiteral("6.02214076e23")};

void numberByToDoubleEx(benchmark::State& state)
{
    for (auto _ : state) {
        for (const QString& number : numbers) {
            bool ok = false;
            benchmark::DoNotOptimize(Vela::toDoubleEx(number, &ok));
        }
    }
    state.SetItemsProcessed(state.iterations() * 4);
}
BENCHMARK(numberByToDoubleEx);

void numberByQLocale(benchmark::State& state)
{
    const QLocale locale = QLocale::c();
    for (auto _ : state) {
        for (const QString& number : numbers) {
            bool ok = false;
            benchmark::DoNotOptimize(locale.toDouble(number, &ok));
        }
    }
    state.SetItemsProcessed(state.iterations() * 4);
}
BENCHMARK(numberByQLocale);

bench::Goal ratio(const std::string& name, double greatest, const std::string& ours,
                  const std::string& peer)
{
    return bench::Goal(name, greatest, [ours, peer](const bench::Medians& ns) {
        return ns.at(ours) / ns.at(peer);
    });
}

const bench::Goal goals[] = {
    ratio("field by Tokenizer / QString::split", 1.0, "fieldsByTokenizer", "fieldsBySplit"),
    ratio("field by Tokenizer / QStringTokenizer with toString", 1.1, "fieldsByTokenizer",
          "fieldsByQStringTokenizer"),
    ratio("toDoubleEx / QLocale::toDouble", 1.0, "numberByToDoubleEx", "numberByQLocale"),
};

} // namespace

#include "suggestion.h"

#include <algorithm>
#include <vector>

namespace vlbase::tool {
namespace {

/// Slips between two words: optimal string alignment, in which swapped neighbours count once.
int slipsBetween(const QString& a, const QString& b)
{
    const auto columns = static_cast<std::size_t>(b.size()) + 1;
    std::vector<int> before(columns);
    std::vector<int> last(columns);
    std::vector<int> row(columns);
    for (std::size_t j = 0; j < columns; ++j)
        last[j] = static_cast<int>(j);
    for (qsizetype i = 1; i <= a.size(); ++i) {
        row[0] = static_cast<int>(i);
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const auto at = static_cast<std::size_t>(j);
            const int other = a[i - 1] == b[j - 1] ? 0 : 1;
            row[at] = std::min({last[at] + 1, row[at - 1] + 1, last[at - 1] + other});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[at] = std::min(row[at], before[at - 2] + 1);
        }
        before.swap(last);
        last.swap(row);
    }
    return last[columns - 1];
}

} // namespace

QString nearestWord(const QString& typed, const QStringList& words)
{
    const QString wanted = typed.toLower();
    int best = std::max(1, static_cast<int>(wanted.size()) / 3) + 1;
    QString nearest;
    for (const QString& word : words) {
        const int slips = slipsBetween(wanted, word);
        if (slips < best) {
            best = slips;
            nearest = word;
        }
    }
    return nearest;
}

QString didYouMean(const QString& typed, const QStringList& words)
{
    const QString nearest = nearestWord(typed, words);
    return nearest.isEmpty() ? QString() : QStringLiteral(" Did you mean '%1'?").arg(nearest);
}

} // namespace vlbase::tool

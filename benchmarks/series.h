#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace bench {

/// The same quantity, measured once per repetition.
class Series
{
public:
    void add(double value) { m_values.push_back(value); }
    const std::vector<double>& values() const { return m_values; }
    bool isEmpty() const { return m_values.empty(); }

    double min() const { return *std::min_element(m_values.begin(), m_values.end()); }
    double max() const { return *std::max_element(m_values.begin(), m_values.end()); }
    double median() const
    {
        std::vector<double> sorted = m_values;
        std::sort(sorted.begin(), sorted.end());
        const std::size_t half = sorted.size() / 2;
        return sorted.size() % 2 == 1 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2;
    }

    /// "median (min to max)"; "-" when nothing was measured.
    std::string text(int decimals) const
    {
        if (isEmpty())
            return "-";
        char buffer[96];
        std::snprintf(buffer, sizeof buffer, "%.*f (%.*f to %.*f)", decimals, median(), decimals,
                      min(), decimals, max());
        return buffer;
    }

private:
    std::vector<double> m_values;
};

/// One value per repetition: how often \p other goes into \p one. Neighbours in time are
/// compared, so that the load of the machine cancels as far as it can.
inline Series ratio(const Series& one, const Series& other)
{
    Series result;
    const std::size_t common = std::min(one.values().size(), other.values().size());
    for (std::size_t i = 0; i < common; ++i)
        result.add(one.values()[i] / other.values()[i]);
    return result;
}

} // namespace bench

// Corrects measured levels by the antenna's calibration table, with a spline over the logarithm of
// the frequency, and tells how much the antenna drifts over its range.
#include <VLBase/coord/leastsquares.h>
#include <VLBase/coord/spline.h>

#include <cmath>
#include <cstdio>

int main()
{
    // From the calibration certificate: MHz and dB/m.
    const std::vector<double> megahertz{30, 50, 80, 120, 200, 350, 600, 1000};
    const std::vector<double> factors{17.9, 11.2, 7.4, 10.8, 14.6, 19.1, 23.7, 28.4};
    std::vector<double> decades;
    for (double frequency : megahertz)
        decades.push_back(std::log10(frequency));

    std::vector<double> curvatures;
    const SplineEnd smooth{SplineEnd::NotAKnot};
    if (spline_cubic_set(decades, factors, smooth, smooth, curvatures) != SplineStatus::Ok)
        return 1;

    const double measured[][2] = {{88.4, 41.2}, {145.5, 12.7}, {433.9, 28.0}, {1296, 3.1}};
    for (const auto& [frequency, level] : measured) {
        SplinePoint factor;
        const double place = std::log10(frequency);
        if (spline_cubic_val(decades, factors, curvatures, place, factor, false) ==
            SplineStatus::Ok)
            std::printf("%7.1f MHz %6.1f dBuV %6.1f dBuV/m\n", frequency, level,
                        level + factor.value);
        else
            std::printf("%7.1f MHz is outside the antenna's table\n", frequency);
    }

    LeastFit trend;
    const std::vector<double> equal(decades.size(), 1.0);
    double slope = 0;
    double middle = 0;
    if (least_set(decades, factors, equal, 1, trend) != LeastStatus::Ok ||
        least_val(trend, 2.5, middle, &slope) != LeastStatus::Ok)
        return 1;
    std::printf("trend %.1f dB a decade, %.1f dB off it on average\n", slope,
                trend.residualNorm / std::sqrt(static_cast<double>(equal.size())));
}

#include "leastsquares.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace {

bool areFinite(const std::vector<double>& numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); });
}

std::size_t distinctAbscissae(const std::vector<double>& x, const std::vector<double>& weights)
{
    std::vector<double> counted;
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (weights[i] > 0.0)
            counted.push_back(x[i]);
    }
    std::sort(counted.begin(), counted.end());
    return static_cast<std::size_t>(std::unique(counted.begin(), counted.end()) - counted.begin());
}

LeastStatus checked(const std::vector<double>& x, const std::vector<double>& y,
                    const std::vector<double>& weights, int degree)
{
    if (y.size() != x.size() || weights.size() != x.size())
        return LeastStatus::SizesDiffer;
    if (x.empty())
        return LeastStatus::TooFewPoints;
    if (!areFinite(x) || !areFinite(y) || !areFinite(weights))
        return LeastStatus::NotFinite;
    if (std::any_of(weights.begin(), weights.end(), [](double weight) { return weight < 0.0; }))
        return LeastStatus::BadWeight;
    if (degree < 0 || distinctAbscissae(x, weights) <= static_cast<std::size_t>(degree))
        return LeastStatus::DegreeTooHigh;
    return LeastStatus::Ok;
}

// The power of two that brings the largest magnitude near 1, so that no square of a number leaves
// the range of a double.
int exponentOf(const std::vector<double>& numbers)
{
    double largest = 0.0;
    for (double number : numbers)
        largest = std::max(largest, std::abs(number));
    return largest > 0.0 ? std::ilogb(largest) : 0;
}

double product(const std::vector<double>& a, const std::vector<double>& b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += a[i] * b[i];
    return sum;
}

void subtract(std::vector<double>& from, double factor, const std::vector<double>& vector)
{
    for (std::size_t i = 0; i < from.size(); ++i)
        from[i] -= factor * vector[i];
}

// One fit. All vectors over the points carry the roots of the weights, so that products are plain
// ones; x, y and weights are scaled by powers of two, which loses nothing.
class Fitting
{
public:
    Fitting(const std::vector<double>& x, const std::vector<double>& y,
            const std::vector<double>& weights)
        : m_xExponent(exponentOf(x))
        , m_yExponent(exponentOf(y))
        , m_rootExponent(exponentOf(weights) / 2)
    {
        for (std::size_t i = 0; i < x.size(); ++i) {
            if (!(weights[i] > 0.0))
                continue;
            const double root = std::sqrt(std::ldexp(weights[i], -2 * m_rootExponent));
            m_x.push_back(std::ldexp(x[i], -m_xExponent));
            m_roots.push_back(root);
            m_residuals.push_back(std::ldexp(y[i], -m_yExponent) * root);
        }
    }

    LeastFit ofDegree(int degree)
    {
        makeRecurrence(degree);
        m_fit.coefficients.resize(m_fit.beta.size());
        constexpr int mostPasses = 20;
        for (int pass = 0; pass < mostPasses && project(); ++pass) {
        }
        m_fit.residualNorm = std::sqrt(product(m_residuals, m_residuals));
        scaleBack();
        return std::move(m_fit);
    }

private:
    // Two neighbours of the sequence, at the points.
    struct Polynomials
    {
        std::vector<double> newest;
        std::vector<double> before;
    };

    Polynomials first() const { return {m_roots, std::vector<double>(m_roots.size())}; }

    // (x - alpha) q[k] - beta q[k - 1], which is still to be divided by its norm.
    void raiseDegree(Polynomials& polynomials, double alpha, double beta) const
    {
        for (std::size_t i = 0; i < m_x.size(); ++i) {
            const double next =
                (m_x[i] - alpha) * polynomials.newest[i] - beta * polynomials.before[i];
            polynomials.before[i] = std::exchange(polynomials.newest[i], next);
        }
    }

    void makeRecurrence(int degree)
    {
        Polynomials polynomials = first();
        m_fit.beta.push_back(normalized(polynomials.newest));
        for (int k = 0; k < degree; ++k) {
            double alpha = 0.0;
            for (std::size_t i = 0; i < m_x.size(); ++i)
                alpha += m_x[i] * polynomials.newest[i] * polynomials.newest[i];
            raiseDegree(polynomials, alpha, m_fit.beta.back());
            m_fit.alpha.push_back(alpha);
            m_fit.beta.push_back(normalized(polynomials.newest));
        }
    }

    // Takes from the residuals what the polynomials hold of them. Far from zero, alpha is rounded
    // so coarsely that they are orthogonal to a few digits only: a further pass finds the rest.
    // Returns whether it found anything that counts.
    bool project()
    {
        double largest = 0.0;
        double largestChange = 0.0;
        Polynomials polynomials = first();
        for (std::size_t k = 0;; ++k) {
            divide(polynomials.newest, m_fit.beta[k]);
            const double change = product(m_residuals, polynomials.newest);
            subtract(m_residuals, change, polynomials.newest);
            m_fit.coefficients[k] += change;
            largest = std::max(largest, std::abs(m_fit.coefficients[k]));
            largestChange = std::max(largestChange, std::abs(change));
            if (k == m_fit.alpha.size())
                return largestChange > largest * std::numeric_limits<double>::epsilon();
            raiseDegree(polynomials, m_fit.alpha[k], m_fit.beta[k]);
        }
    }

    static void divide(std::vector<double>& vector, double divisor)
    {
        for (double& value : vector)
            value /= divisor;
    }

    static double normalized(std::vector<double>& vector)
    {
        const double norm = std::sqrt(product(vector, vector));
        divide(vector, norm);
        return norm;
    }

    void scaleBack()
    {
        m_fit.beta.front() = std::ldexp(m_fit.beta.front(), m_rootExponent);
        for (std::size_t k = 0; k < m_fit.alpha.size(); ++k) {
            m_fit.alpha[k] = std::ldexp(m_fit.alpha[k], m_xExponent);
            m_fit.beta[k + 1] = std::ldexp(m_fit.beta[k + 1], m_xExponent);
        }
        for (double& coefficient : m_fit.coefficients)
            coefficient = std::ldexp(coefficient, m_yExponent + m_rootExponent);
        m_fit.residualNorm = std::ldexp(m_fit.residualNorm, m_yExponent + m_rootExponent);
    }

    int m_xExponent;
    int m_yExponent;
    int m_rootExponent;
    std::vector<double> m_x;
    std::vector<double> m_roots;
    std::vector<double> m_residuals;
    LeastFit m_fit;
};

bool isFinite(const LeastFit& fit)
{
    return areFinite(fit.alpha) && areFinite(fit.beta) && areFinite(fit.coefficients) &&
           std::isfinite(fit.residualNorm);
}

bool isWhole(const LeastFit& fit)
{
    return !fit.coefficients.empty() && fit.beta.size() == fit.coefficients.size() &&
           fit.alpha.size() + 1 == fit.coefficients.size();
}

} // namespace

LeastStatus least_set(const std::vector<double>& x, const std::vector<double>& y,
                      const std::vector<double>& weights, int degree, LeastFit& fit)
{
    const LeastStatus status = checked(x, y, weights, degree);
    if (status != LeastStatus::Ok)
        return status;
    LeastFit found = Fitting(x, y, weights).ofDegree(degree);
    if (!isFinite(found))
        return LeastStatus::NotFinite;
    fit = std::move(found);
    return LeastStatus::Ok;
}

LeastStatus least_val(const LeastFit& fit, double at, double& value, double* slope)
{
    if (!isWhole(fit) || !std::isfinite(at))
        return LeastStatus::NotFinite;
    double polynomial = 1.0 / fit.beta[0];
    double before = 0.0;
    double rise = 0.0; // the derivatives of both
    double riseBefore = 0.0;
    double sum = fit.coefficients[0] * polynomial;
    double sumOfRises = 0.0;
    for (std::size_t k = 0; k < fit.alpha.size(); ++k) {
        // No polynomial stands before the first one: `before` is 0 there.
        const double distance = at - fit.alpha[k];
        const double inverse = 1.0 / fit.beta[k + 1];
        const double next = (distance * polynomial - fit.beta[k] * before) * inverse;
        const double nextRise = (polynomial + distance * rise - fit.beta[k] * riseBefore) * inverse;
        before = std::exchange(polynomial, next);
        riseBefore = std::exchange(rise, nextRise);
        sum += fit.coefficients[k + 1] * polynomial;
        sumOfRises += fit.coefficients[k + 1] * rise;
    }
    if (!std::isfinite(sum) || (slope && !std::isfinite(sumOfRises)))
        return LeastStatus::NotFinite;
    value = sum;
    if (slope)
        *slope = sumOfRises;
    return LeastStatus::Ok;
}

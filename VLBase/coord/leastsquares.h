#pragma once

#include <VLBase/vlbase_export.h>

#include <vector>

/// \file
/// Polynomials through many points by weighted least squares: trends of calibrations, drifts.
///
/// The polynomial is a sum of polynomials that are orthonormal over the points, which their
/// three-term recurrence makes (G. E. Forsythe, J. SIAM 5, 1957, pages 74 to 88); no normal
/// equations are formed. Each coefficient therefore stands for itself: a fit of degree 3 begins as
/// that of degree 2 over the same points.
///
/// Any unit and magnitude. Nothing throws but what an allocation throws; any thread may call both
/// functions at any time.

/// What the least-squares functions return.
enum class LeastStatus : int {
    Ok,
    TooFewPoints, ///< none
    SizesDiffer,  ///< the vectors are not of one length
    NotFinite,    ///< a number that goes in, or one that would come out, is infinite or NaN
    BadWeight,    ///< a weight below 0
    DegreeTooHigh ///< negative, or fewer than degree + 1 distinct abscissae of positive weight
};

/// A fitted polynomial: the sum of coefficients[k] q[k](x), where q[0] = 1 / beta[0] and
/// beta[k + 1] q[k + 1](x) = (x - alpha[k]) q[k](x) - beta[k] q[k - 1](x).
struct LeastFit
{
    std::vector<double> alpha;        ///< as many as the degree says
    std::vector<double> beta;         ///< one more
    std::vector<double> coefficients; ///< one more
    double residualNorm = 0.0;        ///< square root of the weighted sum of squared residuals
};

/// Fits a polynomial to the points.
/// \param weights of the squared residuals, 0 or more; what counts is their ratio
/// \param degree 0 or more
/// \param fit untouched unless the answer is `Ok`
VLBASE_EXPORT LeastStatus least_set(const std::vector<double>& x, const std::vector<double>& y,
                                    const std::vector<double>& weights, int degree, LeastFit& fit);

/// Evaluates a fit, allocating nothing.
/// \param value untouched unless the answer is `Ok`
/// \param slope where the first derivative goes, likewise; null: nowhere
/// \return `NotFinite` for an empty fit and for a place or a result that is no finite number
VLBASE_EXPORT LeastStatus least_val(const LeastFit& fit, double at, double& value,
                                    double* slope = nullptr);

#include "spline.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

namespace {

bool areFinite(const std::vector<double>& numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); });
}

bool isUsable(const SplineEnd& end)
{
    return (end.kind != SplineEnd::Slope && end.kind != SplineEnd::Curvature) ||
           std::isfinite(end.value);
}

SplineStatus checked(const std::vector<double>& x, const std::vector<double>& y,
                     const SplineEnd& begin, const SplineEnd& end)
{
    if (x.size() != y.size())
        return SplineStatus::SizesDiffer;
    if (x.size() < 2)
        return SplineStatus::TooFewPoints;
    if (!areFinite(x) || !areFinite(y) || !std::isfinite(x.back() - x.front()) ||
        !isUsable(begin) || !isUsable(end))
        return SplineStatus::NotFinite;
    if (std::adjacent_find(x.begin(), x.end(), std::greater_equal<>()) != x.end())
        return SplineStatus::NotIncreasing;
    const bool isPeriodic = begin.kind == SplineEnd::Periodic;
    if (isPeriodic != (end.kind == SplineEnd::Periodic) || (isPeriodic && y.front() != y.back()))
        return SplineStatus::EndsDiffer;
    return SplineStatus::Ok;
}

// One row of the system for the curvatures: that of the knot before, of this one and of the next.
struct Row
{
    double before = 0.0;
    double here = 1.0;
    double next = 0.0;
    double right = 0.0;
};

// The curvatures of one spline. Continuity of the slope at an inner knot between pieces of the
// lengths g and h, over which the values rise by the slopes s and t, reads
//     g M[i-1] + 2 (g + h) M[i] + h M[i+1] = 6 (t - s).
class Curvatures
{
public:
    Curvatures(const std::vector<double>& x, const std::vector<double>& y)
        : m_rows(x.size())
    {
        const std::size_t pieces = x.size() - 1;
        m_lengths.resize(pieces);
        m_slopes.resize(pieces);
        for (std::size_t i = 0; i < pieces; ++i) {
            m_lengths[i] = x[i + 1] - x[i];
            m_slopes[i] = (y[i + 1] - y[i]) / m_lengths[i];
        }
        for (std::size_t i = 1; i < pieces; ++i)
            m_rows[i] = innerRow(i - 1, i);
    }

    bool areSlopesFinite() const { return areFinite(m_slopes); }

    std::vector<double> between(SplineEnd begin, SplineEnd end)
    {
        const std::size_t last = m_lengths.size();
        if (last == 1) { // no inner knot: the line through both points
            beLineAt(begin);
            beLineAt(end);
        }
        const bool isFree = begin.kind == SplineEnd::NotAKnot;
        const bool isFreeAtEnd = end.kind == SplineEnd::NotAKnot;
        if (last == 2 && isFree && isFreeAtEnd)
            return parabola();
        if (isFree)
            joinFirstPieces();
        else
            m_rows.front() = firstRow(begin);
        if (isFreeAtEnd)
            joinLastPieces();
        else
            m_rows.back() = lastRow(end);

        std::vector<double> curvatures = solved(m_rows);
        if (isFree)
            curvatures[0] = beyond(curvatures[1], curvatures[2], m_lengths[0] / m_lengths[1]);
        if (isFreeAtEnd) {
            curvatures[last] = beyond(curvatures[last - 1], curvatures[last - 2],
                                      m_lengths[last - 1] / m_lengths[last - 2]);
        }
        return curvatures;
    }

    // The first knot is an inner one between the last piece and the first; the last knot is the
    // first. The two corners that this puts into the system are a correction of rank one
    // (Sherman and Morrison).
    std::vector<double> periodic()
    {
        const std::size_t unknowns = m_lengths.size();
        if (unknowns == 1)
            return {0.0, 0.0};
        m_rows.pop_back();
        m_rows.front() = innerRow(unknowns - 1, 0);
        if (unknowns == 2)
            return periodicOfTwo();

        const double corner = m_lengths.back();
        const double pivot = -m_rows.front().here;
        m_rows.front().before = m_rows.back().next = 0.0;
        m_rows.front().here -= pivot;
        m_rows.back().here -= corner * corner / pivot;
        std::vector<double> curvatures = solved(m_rows);
        for (Row& row : m_rows)
            row.right = 0.0;
        m_rows.front().right = pivot;
        m_rows.back().right = corner;
        const std::vector<double> correction = solved(m_rows);

        const auto projected = [ratio = corner / pivot](const std::vector<double>& vector) {
            return vector.front() + ratio * vector.back();
        };
        const double factor = projected(curvatures) / (1.0 + projected(correction));
        for (std::size_t i = 0; i < unknowns; ++i)
            curvatures[i] -= factor * correction[i];
        curvatures.push_back(curvatures.front());
        return curvatures;
    }

private:
    Row innerRow(std::size_t before, std::size_t after) const
    {
        const double g = m_lengths[before];
        const double h = m_lengths[after];
        return {g, 2.0 * (g + h), h, 6.0 * (m_slopes[after] - m_slopes[before])};
    }

    void beLineAt(SplineEnd& end) const
    {
        if (end.kind == SplineEnd::NotAKnot)
            end = {SplineEnd::Slope, m_slopes[0]};
    }

    Row firstRow(const SplineEnd& begin) const
    {
        const double h = m_lengths.front();
        if (begin.kind == SplineEnd::Slope)
            return {0.0, 2.0 * h, h, 6.0 * (m_slopes.front() - begin.value)};
        return {0.0, 1.0, 0.0, begin.kind == SplineEnd::Curvature ? begin.value : 0.0};
    }

    Row lastRow(const SplineEnd& end) const
    {
        const double h = m_lengths.back();
        if (end.kind == SplineEnd::Slope)
            return {h, 2.0 * h, 0.0, 6.0 * (end.value - m_slopes.back())};
        return {0.0, 1.0, 0.0, end.kind == SplineEnd::Curvature ? end.value : 0.0};
    }

    // One cubic over two pieces: its curvature is a line through both, which takes the outer
    // unknown out of the inner row.
    void joinFirstPieces()
    {
        const double g = m_lengths[0];
        const double h = m_lengths[1];
        m_rows[0] = Row();
        m_rows[1].before = 0.0;
        m_rows[1].here = h + h + g;
        m_rows[1].next = h - g;
        m_rows[1].right *= h / (g + h);
    }

    void joinLastPieces()
    {
        const std::size_t last = m_lengths.size();
        const double g = m_lengths[last - 2];
        const double h = m_lengths[last - 1];
        m_rows[last] = Row();
        m_rows[last - 1].next = 0.0;
        m_rows[last - 1].here = g + g + h;
        m_rows[last - 1].before = g - h;
        m_rows[last - 1].right *= g / (g + h);
    }

    // The line through two neighbouring curvatures, as far outside as `ratio` of their distance.
    static double beyond(double near, double far, double ratio)
    {
        return near + (near - far) * ratio;
    }

    std::vector<double> parabola() const
    {
        const double curvature = 2.0 * (m_slopes[1] - m_slopes[0]) / (m_lengths[0] + m_lengths[1]);
        return std::vector<double>(3, curvature);
    }

    // Both neighbours of a knot are the other one.
    std::vector<double> periodicOfTwo() const
    {
        const double curvature = m_rows[0].right / m_rows[0].here * 2.0;
        return {curvature, -curvature, curvature};
    }

    // Gauss without a search for pivots, which a dominant diagonal does not need.
    static std::vector<double> solved(std::vector<Row> rows)
    {
        for (std::size_t i = 1; i < rows.size(); ++i) {
            const double factor = rows[i].before / rows[i - 1].here;
            rows[i].here -= factor * rows[i - 1].next;
            rows[i].right -= factor * rows[i - 1].right;
        }
        std::vector<double> solution(rows.size());
        double next = 0.0;
        for (std::size_t i = rows.size(); i-- > 0;)
            next = solution[i] = (rows[i].right - rows[i].next * next) / rows[i].here;
        return solution;
    }

    std::vector<double> m_lengths;
    std::vector<double> m_slopes;
    std::vector<Row> m_rows;
};

// The search that uneven knots need. Kept out of the evaluation, which is quick without it.
Q_NEVER_INLINE std::size_t searchedPiece(const std::vector<double>& x, double at)
{
    return static_cast<std::size_t>(std::upper_bound(x.begin() + 1, x.end() - 1, at) - x.begin()) -
           1;
}

// The piece that holds a place between the first knot and the last: the last one whose left knot
// is not behind it. Even spacing is guessed right.
std::size_t pieceAt(const std::vector<double>& x, double at)
{
    // Signed numbers, which the processor converts in one step.
    const auto pieces = static_cast<std::ptrdiff_t>(x.size() - 1);
    const auto count = static_cast<double>(pieces);
    const double place = (at - x.front()) / (x.back() - x.front()) * count;
    if (place < count) {
        const auto guess = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(place));
        if (x[guess] <= at && at < x[guess + 1])
            return guess;
    }
    return searchedPiece(x, at);
}

// The cubic of one piece, by its Taylor series at the left knot or at the right one.
struct Piece
{
    Piece(const std::vector<double>& x, const std::vector<double>& y,
          const std::vector<double>& curvatures, std::size_t left)
        : length(x[left + 1] - x[left])
        , inverse(1.0 / length)
        , secant((y[left + 1] - y[left]) * inverse)
        , bend(curvatures[left])
        , nextBend(curvatures[left + 1])
        , twist((nextBend - bend) * inverse)
    {
    }

    SplinePoint fromLeft(double value, double distance) const
    {
        return series(value, secant - length * sixth * (bend + bend + nextBend), bend, distance);
    }

    SplinePoint fromRight(double value, double distance) const
    {
        return series(value, secant + length * sixth * (bend + nextBend + nextBend), nextBend,
                      distance);
    }

    double length;
    double inverse;
    double secant;
    double bend;
    double nextBend;
    double twist;

private:
    static constexpr double sixth = 1.0 / 6.0;

    SplinePoint series(double value, double slope, double curvature, double distance) const
    {
        return {
            value + distance * (slope + distance * (0.5 * curvature + distance * sixth * twist)),
            slope + distance * (curvature + distance * 0.5 * twist), curvature + distance * twist};
    }
};

bool isFinite(const SplinePoint& point)
{
    return std::isfinite(point.value) && std::isfinite(point.slope) &&
           std::isfinite(point.curvature);
}

// At the last knot as well, from which the last piece goes on.
Q_NEVER_INLINE SplineStatus outside(const std::vector<double>& x, const std::vector<double>& y,
                                    const std::vector<double>& curvatures, double at,
                                    SplinePoint& point, bool extrapolate)
{
    if (!std::isfinite(at))
        return SplineStatus::NotFinite;
    if (!extrapolate && at != x.back())
        return SplineStatus::Outside;
    const SplinePoint found =
        at < x.front() ? Piece(x, y, curvatures, 0).fromLeft(y.front(), at - x.front())
                       : Piece(x, y, curvatures, x.size() - 2).fromRight(y.back(), at - x.back());
    if (!isFinite(found))
        return SplineStatus::NotFinite;
    point = found;
    return SplineStatus::Ok;
}

} // namespace

SplineStatus spline_cubic_set(const std::vector<double>& x, const std::vector<double>& y,
                              SplineEnd begin, SplineEnd end, std::vector<double>& curvatures)
{
    const SplineStatus status = checked(x, y, begin, end);
    if (status != SplineStatus::Ok)
        return status;
    Curvatures system(x, y);
    if (!system.areSlopesFinite())
        return SplineStatus::NotFinite;
    std::vector<double> found =
        begin.kind == SplineEnd::Periodic ? system.periodic() : system.between(begin, end);
    if (!areFinite(found))
        return SplineStatus::NotFinite;
    curvatures = std::move(found);
    return SplineStatus::Ok;
}

SplineStatus spline_cubic_val(const std::vector<double>& x, const std::vector<double>& y,
                              const std::vector<double>& curvatures, double at, SplinePoint& point,
                              bool extrapolate)
{
    const std::size_t size = x.size();
    if (y.size() != size || curvatures.size() != size)
        return SplineStatus::SizesDiffer;
    if (size < 2)
        return SplineStatus::TooFewPoints;
    if (x.front() <= at && at < x.back()) {
        const std::size_t left = pieceAt(x, at);
        point = Piece(x, y, curvatures, left).fromLeft(y[left], at - x[left]);
        return SplineStatus::Ok;
    }
    return outside(x, y, curvatures, at, point, extrapolate);
}

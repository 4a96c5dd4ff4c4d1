#include <VLBase/coord/leastsquares.h>
#include <VLBase/coord/spline.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <cmath>
#include <limits>

namespace {

using Numbers = std::vector<double>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();
const double notANumber = std::nan("");

Numbers numbers(const QJsonValue& array)
{
    Numbers result;
    for (const QJsonValue& number : array.toArray())
        result.push_back(number.toDouble());
    return result;
}

SplineEnd endOf(const QJsonValue& value)
{
    const char* const names[] = {"natural", "slope", "curvature", "not-a-knot", "periodic"};
    SplineEnd end{SplineEnd::Natural, value[1].toDouble()};
    for (int kind = 0; kind < 5; ++kind) {
        if (value[0].toString() == QLatin1String(names[kind]))
            end.kind = static_cast<SplineEnd::Kind>(kind);
    }
    return end;
}

// Relative to numbers that are all about 1.
bool agree(double found, double expected)
{
    return std::abs(found - expected) <= 1e-12 * std::max(1.0, std::abs(expected));
}

} // namespace

class TestFits : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QFile file(QStringLiteral(":/fits/expected.json"));
        QVERIFY(file.open(QFile::ReadOnly));
        m_expected = QJsonDocument::fromJson(file.readAll()).object();
        QVERIFY(m_expected[u"splines"].toArray().size() > 60);
    }

    void splinesAgreeWithSciPy()
    {
        for (const QJsonValue& row : m_expected[u"splines"].toArray()) {
            const Numbers x = numbers(row[u"x"]), y = numbers(row[u"y"]), at = numbers(row[u"at"]);
            const QJsonValue expected = row[u"expected"];
            Numbers curvatures;
            QCOMPARE(spline_cubic_set(x, y, endOf(row[u"begin"]), endOf(row[u"end"]), curvatures),
                     SplineStatus::Ok);
            SplinePoint point;
            for (std::size_t i = 0; i < at.size(); ++i) {
                const int column = static_cast<int>(i);
                QCOMPARE(spline_cubic_val(x, y, curvatures, at[i], point), SplineStatus::Ok);
                const bool same = agree(point.value, expected[0][column].toDouble()) &&
                                  agree(point.slope, expected[1][column].toDouble()) &&
                                  agree(point.curvature, expected[2][column].toDouble());
                QVERIFY2(same, qPrintable(QStringLiteral("%1 points at %2: %3 %4 %5")
                                              .arg(x.size())
                                              .arg(at[i])
                                              .arg(point.value)
                                              .arg(point.slope)
                                              .arg(point.curvature)));
            }
            for (std::size_t i = 0; i < x.size(); ++i) {
                QCOMPARE(spline_cubic_val(x, y, curvatures, x[i], point, false), SplineStatus::Ok);
                QVERIFY(point.value == y[i]);
            }
        }
    }

    // Knots that no guess of even spacing finds.
    void findsThePiece()
    {
        Numbers x, y;
        for (int i = 0; i < 300; ++i) {
            x.push_back(std::pow(10.0, i % 2 ? i : i - 0.9));
            y.push_back(i);
        }
        const Numbers straight(x.size(), 0.0);
        SplinePoint point;
        for (std::size_t i = 1; i < x.size(); ++i) {
            const double middle = x[i - 1] + (x[i] - x[i - 1]) / 2;
            QCOMPARE(spline_cubic_val(x, y, straight, middle, point), SplineStatus::Ok);
            QVERIFY(agree(point.value, static_cast<double>(i) - 0.5));
        }
    }

    void splinesAreRefused()
    {
        const SplineEnd natural, periodic{SplineEnd::Periodic}, steep{SplineEnd::Slope, infinity};
        const std::tuple<Numbers, Numbers, SplineEnd, SplineEnd, SplineStatus> cases[] = {
            {{}, {}, natural, natural, SplineStatus::TooFewPoints},
            {{1}, {1}, natural, natural, SplineStatus::TooFewPoints},
            {{1, 2}, {1}, natural, natural, SplineStatus::SizesDiffer},
            {{1, 1}, {1, 2}, natural, natural, SplineStatus::NotIncreasing},
            {{1, 3, 2}, {1, 2, 3}, natural, natural, SplineStatus::NotIncreasing},
            {{1, notANumber, 2}, {1, 2, 3}, natural, natural, SplineStatus::NotFinite},
            {{1, 2}, {1, -infinity}, natural, natural, SplineStatus::NotFinite},
            {{1, 2}, {1, 2}, natural, steep, SplineStatus::NotFinite},
            {{-largest, largest}, {1, 2}, natural, natural, SplineStatus::NotFinite},
            {{0, 1e-300}, {-1e300, 1e300}, natural, natural, SplineStatus::NotFinite},
            {{1, 2, 3}, {1, 2, 1}, periodic, natural, SplineStatus::EndsDiffer},
            {{1, 2, 3}, {1, 2, 1}, natural, periodic, SplineStatus::EndsDiffer},
            {{1, 2, 3}, {1, 2, 3}, periodic, periodic, SplineStatus::EndsDiffer},
        };
        for (const auto& [x, y, begin, end, status] : cases) {
            Numbers curvatures{7};
            QCOMPARE(spline_cubic_set(x, y, begin, end, curvatures), status);
            QVERIFY(curvatures == Numbers{7});
        }

        const Numbers x{0, 1}, flat{0, 0};
        const std::tuple<Numbers, double, bool, SplineStatus> places[] = {
            {{0}, 0.5, true, SplineStatus::SizesDiffer},
            {flat, notANumber, true, SplineStatus::NotFinite},
            {flat, infinity, false, SplineStatus::NotFinite},
            {flat, -0.001, false, SplineStatus::Outside},
            {flat, 1.001, false, SplineStatus::Outside},
            {{0, 1}, largest, true, SplineStatus::NotFinite},
        };
        for (const auto& [curvatures, at, extrapolate, status] : places) {
            SplinePoint point{7, 7, 7};
            QCOMPARE(spline_cubic_val(x, flat, curvatures, at, point, extrapolate), status);
            QVERIFY(point.value == 7 && point.slope == 7 && point.curvature == 7);
        }
    }

    // Far from zero, at any magnitude, the fit is the same: numbers are moved by powers of two.
    void fitsAgreeWithNumPy()
    {
        for (const QJsonValue& row : m_expected[u"fits"].toArray()) {
            const QJsonValue expected = row[u"expected"];
            for (const double scale : {1.0, std::ldexp(1, 600), std::ldexp(1, -500)}) {
                Numbers x = numbers(row[u"x"]), y = numbers(row[u"y"]);
                for (std::size_t i = 0; i < x.size(); ++i) {
                    x[i] *= scale;
                    y[i] *= scale;
                }
                LeastFit fit;
                QCOMPARE(least_set(x, y, numbers(row[u"weights"]), row[u"degree"].toInt(), fit),
                         LeastStatus::Ok);
                QVERIFY(agree(fit.residualNorm / scale, row[u"rest"].toDouble()));
                const Numbers at = numbers(row[u"at"]);
                for (std::size_t i = 0; i < at.size(); ++i) {
                    const int column = static_cast<int>(i);
                    double value = 0, slope = 0;
                    QCOMPARE(least_val(fit, at[i] * scale, value, &slope), LeastStatus::Ok);
                    QVERIFY(agree(value / scale, expected[0][column].toDouble()));
                    QVERIFY(agree(slope, expected[1][column].toDouble()));
                }
            }
        }
    }

    // A cubic through a hundred places beside 2^31 comes back, though the means of such places are
    // known to 1e-7 only; one of weight 0 has no say.
    void fitsFarFromZero()
    {
        const double origin = std::ldexp(1, 31);
        Numbers x, y, weights(101, 3.0);
        for (int i = 0; i <= 100; ++i) {
            x.push_back(origin + i);
            y.push_back(((0.001 * i - 0.2) * i + 3) * i - 5);
        }
        y[50] += 1000;
        weights[50] = 0;
        LeastFit fit;
        QCOMPARE(least_set(x, y, weights, 3, fit), LeastStatus::Ok);
        for (std::size_t i = 0; i < x.size(); ++i) {
            double value = 0;
            QCOMPARE(least_val(fit, x[i], value), LeastStatus::Ok);
            QVERIFY(i == 50 || std::abs(value - y[i]) < 1e-10);
        }
        QVERIFY(fit.residualNorm < 1e-9);
    }

    void fitsAreRefused()
    {
        const std::tuple<Numbers, Numbers, Numbers, int, LeastStatus> cases[] = {
            {{}, {}, {}, 0, LeastStatus::TooFewPoints},
            {{1, 2}, {1}, {1, 1}, 0, LeastStatus::SizesDiffer},
            {{1, 2}, {1, 2}, {1}, 0, LeastStatus::SizesDiffer},
            {{1, notANumber}, {1, 2}, {1, 1}, 0, LeastStatus::NotFinite},
            {{1, 2}, {1, 2}, {1, infinity}, 0, LeastStatus::NotFinite},
            {{1, 2}, {1, 2}, {1, -1}, 0, LeastStatus::BadWeight},
            {{1, 2}, {1, 2}, {0, 0}, 0, LeastStatus::DegreeTooHigh},
            {{1, 2}, {1, 2}, {1, 1}, -1, LeastStatus::DegreeTooHigh},
            {{1, 2}, {1, 2}, {1, 0}, 1, LeastStatus::DegreeTooHigh},
            {{0.0, -0.0, 2}, {1, 2, 3}, {1, 1, 1}, 2, LeastStatus::DegreeTooHigh},
        };
        for (const auto& [x, y, weights, degree, status] : cases) {
            LeastFit fit;
            fit.residualNorm = 7;
            QCOMPARE(least_set(x, y, weights, degree, fit), status);
            QVERIFY(fit.residualNorm == 7 && fit.coefficients.empty());
        }

        LeastFit line;
        QCOMPARE(least_set({0, 1}, {0, 1}, {1, 1}, 1, line), LeastStatus::Ok);
        LeastFit cut = line;
        cut.alpha.clear();
        double value = 7, slope = 7;
        QCOMPARE(least_val(LeastFit(), 0, value, &slope), LeastStatus::NotFinite);
        QCOMPARE(least_val(cut, 0, value, &slope), LeastStatus::NotFinite);
        QCOMPARE(least_val(line, notANumber, value, &slope), LeastStatus::NotFinite);
        QVERIFY(value == 7 && slope == 7);
    }

private:
    QJsonObject m_expected;
};

QTEST_GUILESS_MAIN(TestFits)

#include "tst_fits.moc"

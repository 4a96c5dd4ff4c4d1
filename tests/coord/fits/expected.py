#!/usr/bin/env python3
"""Writes expected.json: splines as SciPy lays them, polynomials as NumPy fits them."""
import itertools
import json
import pathlib

import numpy
import scipy
from scipy.interpolate import CubicSpline

random = numpy.random.default_rng(1)
# The order of the derivative that an end fixes, and whether the case brings its value.
ENDS = {"natural": (2, False), "slope": (1, True), "curvature": (2, True), "not-a-knot": None}


def spline(points, begin, end):
    x = numpy.cumsum(random.uniform(0.5, 1.5, points))
    y = random.uniform(-1, 1, points)
    values = random.uniform(-1, 1, 2)
    if begin == "periodic":
        y[-1] = y[0]
        conditions = "periodic"
    else:
        conditions = tuple(
            (ENDS[kind][0], value if ENDS[kind][1] else 0.0) if ENDS[kind] else kind
            for kind, value in ((begin, values[0]), (end, values[1])))
    laid = CubicSpline(x, y, bc_type=conditions)
    # Outside as well: a periodic one of SciPy's goes round there, so it is left out.
    reach = 0 if begin == "periodic" else 0.5
    at = numpy.concatenate([x[:-1], random.uniform(x[0] - reach, x[-1] + reach, 8)])
    return {"begin": [begin, values[0]], "end": [end, values[1]], "x": list(x), "y": list(y),
            "at": list(at), "expected": [list(laid(at, order)) for order in range(3)]}


def fit(points, degree):
    x = numpy.sort(random.uniform(-1, 1, points))
    y = numpy.sin(2 * x) + random.uniform(-0.1, 0.1, points)
    weights = random.uniform(0.5, 2, points)
    polynomial = numpy.polyfit(x, y, degree, w=numpy.sqrt(weights))
    at = random.uniform(-1, 1, 5)
    rest = numpy.sqrt(numpy.sum(weights * (numpy.polyval(polynomial, x) - y) ** 2))
    return {"degree": degree, "x": list(x), "y": list(y), "weights": list(weights), "at": list(at),
            "expected": [list(numpy.polyval(polynomial, at)),
                         list(numpy.polyval(numpy.polyder(polynomial), at))], "rest": rest}


pairs = list(itertools.product(ENDS, ENDS)) + [("periodic", "periodic")]
expected = {
    "versions": [f"SciPy {scipy.__version__}", f"NumPy {numpy.__version__}"],
    "splines": [spline(points, *ends) for points in (2, 3, 4, 9) for ends in pairs],
    "fits": [fit(points, degree) for points in (7, 40) for degree in range(6)],
}
# One case a line.
groups = (f'"{name}": [\n' + ",\n".join(map(json.dumps, cases)) + "\n]"
          for name, cases in expected.items())
pathlib.Path(__file__).with_name("expected.json").write_text("{" + ",\n".join(groups) + "}\n")

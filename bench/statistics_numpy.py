#!/usr/bin/env python3
"""NumPy's side of bench_statistics, which runs this: a line "case seconds" for each case."""
import sys
import time

try:
    import numpy
except ImportError:
    sys.exit(0)


def best(call):
    times = []
    for _ in range(7):
        start = time.perf_counter()
        call()
        times.append(time.perf_counter() - start)
    return min(times)


def moments(x, axis):
    mean = x.mean(axis=axis, keepdims=True)
    d = x - mean
    square = d * d
    return square.mean(axis=axis), (square * d).mean(axis=axis), (square * square).mean(axis=axis)


random = numpy.random.default_rng(1)
for n, p in ((200000, 16), (1000000, 4)):
    rows = random.random((n, p))
    for layout, x, axis in (("rows", rows, 0), ("columns", numpy.ascontiguousarray(rows.T), 1)):
        name = f"{n}x{p}/{layout}"
        print(f"{name}/variance", best(lambda: (x.mean(axis=axis), x.var(axis=axis, ddof=1))))
        print(f"{name}/moments", best(lambda: moments(x, axis)))
        print(f"{name}/covariance", best(lambda: numpy.cov(x, rowvar=axis == 1)))

#!/usr/bin/env python3
"""Times SciPy's CubicSpline on the cases of bench_fitting, in nanoseconds per item.

Run beside bench_fitting on the same machine and compare the two columns.
"""
import sys
import timeit

try:
    import numpy
    from scipy.interpolate import CubicSpline
except ImportError as missing:
    sys.exit(f"{missing.name} is not installed")


def nanoseconds_per_item(call, items):
    """The best of five timings of at least a tenth of a second each."""
    timer = timeit.Timer(call)
    loops, _ = timer.autorange()
    return min(timer.repeat(5, loops)) / loops / items * 1e9


def main():
    random = numpy.random.default_rng(1)
    for functions in (1, 16):
        x = numpy.arange(10000) + 0.5 * random.random(10000)
        y = random.random((10000, functions))
        time = nanoseconds_per_item(lambda: CubicSpline(x, y, bc_type="natural"), y.size)
        print(f"construct natural 10000 x {functions:<18d} {time:10.3f}")
    for cells, sites in ((256, 4096), (10000, 1000000)):
        x = numpy.arange(cells + 1) + 0.5 * random.random(cells + 1)
        spline = CubicSpline(x, random.random(cells + 1), bc_type="natural")
        at = random.uniform(x[0], x[-1], sites)
        for name, order in (("sorted", numpy.sort(at)), ("random", at)):
            time = nanoseconds_per_item(lambda order=order: spline(order), sites)
            print(f"{name} {cells} cells {sites:<24d} {time:10.3f}")


if __name__ == "__main__":
    main()

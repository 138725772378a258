#!/usr/bin/env python3
"""Times SciPy's CubicSpline on the cases of bench_fitting, which runs this.

Prints a line "case|scipy|nanoseconds per item" each; nothing but a word on standard error when SciPy
is not installed.
"""
import sys
import time
import timeit

try:
    import numpy
    from scipy.interpolate import CubicSpline
except ImportError as missing:
    sys.exit(f"{missing.name} is not installed")


def report(case, call, items):
    """The best of seven timings of at least a twentieth of a second each, of this thread alone."""
    timer = timeit.Timer(call, timer=time.thread_time)
    loops = max(1, int(0.05 / max(timer.timeit(1), 1e-6)))
    best = min(timer.repeat(7, loops)) / loops
    print(f"{case}|scipy|{best / items * 1e9:.4g}")


def main():
    random = numpy.random.default_rng(1)
    uniform = numpy.arange(10000.0)
    uneven = uniform + 0.5 * random.random(10000)
    for functions in (1, 16):
        y = random.random(10000 if functions == 1 else (10000, functions))
        report(f"construct natural 10000 x {functions}",
               lambda y=y: CubicSpline(uneven, y, bc_type="natural"), y.size)
    y = random.random(10000)
    report("construct natural uniform 10000",
           lambda: CubicSpline(uniform, y, bc_type="natural"), y.size)
    for start, cells, count, spacing in (("", 256, 4096, 0.5), ("", 10000, 1000000, 0.5),
                                         ("uniform partition ", 10000, 1000000, 0.0)):
        x = numpy.arange(cells + 1) + spacing * random.random(cells + 1)
        spline = CubicSpline(x, random.random(cells + 1), bc_type="natural")
        sites = random.uniform(x[0], x[-1], count)
        size = "1e6" if count == 1000000 else str(count)
        for name, at in (("sorted", numpy.sort(sites)), ("random", sites)):
            report(f"{start}{name} {cells} cells {size}", lambda at=at: spline(at), count)


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Reference statistics for SignalStatisticsTest.cpp, by numpy and scipy in extended precision.

The samples come from a 64-bit linear congruential generator, so that both sides form the same doubles exactly.
Usage: signal_statistics_vectors.py > signal_statistics_vectors.inc
"""
import numpy as np
from scipy import stats


def samples(count, offset):
    state, values = 12345, []
    for _ in range(count):
        state = (state * 6364136223846793005 + 1442695040888963407) % 2**64
        values.append((state >> 11) / 2.0**50 + offset)  # offset + [0, 8), exact for offsets below 2^3
    return np.array(values)


print("// count, offset, mean, variance, median, mean square: written by signal_statistics_vectors.py")
for count, offset in [(1, 0.0), (2, 0.0), (3, -4.0), (10, 0.0), (1001, -4.0), (4096, -4.0), (20011, -3.5), (65536, 0.0)]:
    x = samples(count, offset)
    wide = x.astype(np.longdouble)
    variance = stats.tvar(wide) if count > 1 else 0.0
    figures = (wide.mean(), variance, np.median(x), (wide * wide).mean())
    print("{%d, %r, %s}," % (count, offset, ", ".join(repr(float(figure)) for figure in figures)))

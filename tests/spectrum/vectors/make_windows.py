#!/usr/bin/python3
"""Writes windows.txt: values of scipy's windows that SpectrumEstimatorWindowsTest compares with.

A line is: window, length, attenuation in dB, equivalent noise bandwidth in bins, then index and value in turn. Long
windows are sampled; the noise bandwidth covers the rest.
"""
import warnings

import numpy as np
from scipy import signal
from scipy.signal import windows

PERIODIC = {"hann": "hann", "hamming": "hamming", "blackman-harris": "blackmanharris", "flat-top": "flattop"}
LENGTHS = [1, 2, 3, 5, 64, 1000, 1025]


def dolph_chebyshev(n, attenuation):
    """The window as the transform of T(n-1, x0 cos(pi m / n)), in extended precision.

    scipy's chebwin computes the same in double precision and is off by 1.4e-11 at 1025 points, too coarse to compare
    with; at 64 points and fewer the two agree to 1e-13, which is checked here.
    """
    if n < 3:
        return np.ones(n)
    real = np.longdouble
    order = real(n - 1)
    x0 = np.cosh(np.arccosh(real(10) ** (real(attenuation) / 20)) / order)
    m = np.arange(n, dtype=real)
    pi = real("3.14159265358979323846264338327950288")
    x = x0 * np.cos(pi * m / n)
    outside = np.abs(x) > 1
    # T is even or odd with its order; where x < -1 that is its sign.
    sign = np.where((x < -1) & (n % 2 == 0), real(-1), real(1))
    T = np.where(outside, sign * np.cosh(order * np.arccosh(np.maximum(np.abs(x), 1))),
                 np.cos(order * np.arccos(np.clip(x, -1, 1))))
    k = np.arange(n, dtype=real) - order / 2
    w = np.array([np.sum(T * np.cos(2 * pi * m * position / n)) for position in k])
    w = (w / np.max(w)).astype(float)
    if n <= 64:
        assert np.max(np.abs(w - windows.chebwin(n, attenuation, sym=True))) < 1e-13
    return w


def shape(name, n, attenuation):
    if name in PERIODIC:
        return windows.get_window(PERIODIC[name], n, fftbins=True)
    if name == "chebyshev":
        return dolph_chebyshev(n, attenuation)
    return windows.kaiser(n, signal.kaiser_beta(attenuation), sym=True)


def main():
    warnings.simplefilter("ignore")
    rows = [(name, 0.0) for name in PERIODIC]
    rows += [("chebyshev", a) for a in (45.0, 60.0, 100.0)]
    rows += [("kaiser", a) for a in (20.0, 30.0, 60.0, 140.0)]
    with open("windows.txt", "w") as out:
        for name, attenuation in rows:
            for n in LENGTHS:
                w = shape(name, n, attenuation)
                enbw = n * np.sum(w**2) / np.sum(w) ** 2 if n > 1 else 1.0
                indices = range(n) if n <= 5 else sorted({*range(0, n, max(n // 11, 1)), n // 2, n - 1})
                values = " ".join(f"{k} {w[k]:.17g}" for k in indices)
                out.write(f"{name} {n} {attenuation:g} {enbw:.17g} {values}\n")


main()

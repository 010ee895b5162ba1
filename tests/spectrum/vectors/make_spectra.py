#!/usr/bin/python3
"""Writes spectra.txt: averaged periodograms of scipy.signal.welch that SpectrumEstimatorWelchTest compares with.

The input is noise of a linear congruential generator, coloured by a recursion in double precision, so that both sides
make the same samples to the bit. A line is: real or complex, range, type, window, segment length, transform length,
overlap in percent, samples, sum over all bins, then bin number (counted from 0 Hz up) and value in turn.
The first segment begins with zeros in the place of its overlap.
"""
import itertools
import math

import numpy as np
from scipy import signal

FS = 48000.0
WINDOWS = {"hann": "hann", "flat-top": "flattop", "blackman-harris": "blackmanharris", "rectangular": "boxcar"}


def coloured_noise(seed, n):
    state, last, samples = seed, 0.0, []
    for _ in range(n):
        state = (state * 6364136223846793005 + 1442695040888963407) % 2**64
        last = 0.75 * last + ((state >> 11) * 2.0**-53 - 0.5)
        samples.append(last)
    return np.array(samples)


def overlap_samples(length, percent):
    exact = percent * length / 100
    nearest = math.ceil(exact) if abs(exact - math.ceil(exact)) < abs(exact - math.floor(exact)) else math.floor(exact)
    return min(nearest, length - 1)


def row(kind, frequency_range, spectrum_type, window, L, N, percent):
    O = overlap_samples(L, percent)
    n = (L - O) * 9 + (L - O) // 2
    x = coloured_noise(1, n)
    if kind == "complex":
        x = x + 1j * coloured_noise(2, n)
    _, p = signal.welch(np.concatenate([np.zeros(O), x]), FS, signal.get_window(WINDOWS[window], L), L, O, N,
                        detrend=False, return_onesided=frequency_range == "one-sided",
                        scaling="density" if spectrum_type == "power-density" else "spectrum")
    bins = sorted({*range(0, len(p), max(len(p) // 9, 1)), len(p) // 2, len(p) - 1})
    values = " ".join(f"{k} {p[k]:.17g}" for k in bins)
    return f"{kind} {frequency_range} {spectrum_type} {window} {L} {N} {percent} {n} {np.sum(p):.17g} {values}\n"


def main():
    lengths = [(1000, 1024), (1024, 1024), (513, 513), (64, 1025), (5, 8), (3, 3), (1, 1)]
    forms = [("real", "one-sided"), ("real", "centered"), ("complex", "centered")]
    with open("spectra.txt", "w") as out:
        for (L, N), percent, (kind, frequency_range) in itertools.product(lengths, [0, 50, 75, 99], forms):
            for window, spectrum_type in (("hann", "power-density"), ("flat-top", "power")):
                if L > 3:
                    out.write(row(kind, frequency_range, spectrum_type, window, L, N, percent))
            out.write(row(kind, frequency_range, "power", "rectangular", L, N, percent))


main()

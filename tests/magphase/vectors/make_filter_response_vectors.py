#!/usr/bin/python3
"""Writes filter_responses.txt: responses by scipy.signal.freqz of filters that scipy designed.

Run with scipy 1.10:  make_filter_response_vectors.py > filter_responses.txt
For each filter a line with its name, then one each with its numerator, its denominator, and the real and imaginary parts
of its response at points from 0 to half the sample rate.
"""
import numpy
from scipy import signal

SAMPLE_RATE = 48000.0
POINTS = 33

filters = {
    "chebyshev low-pass, 6 poles": signal.cheby1(6, 0.5, 6000, fs=SAMPLE_RATE),
    "elliptic band-pass, 8 poles": signal.ellip(4, 0.2, 60, [4000, 9000], "bandpass", fs=SAMPLE_RATE),
    "resonator, poles at radius 0.9999": signal.iirpeak(1000, 1000 / 1.53, fs=SAMPLE_RATE),
    "longer numerator than denominator": (numpy.convolve([1, -0.4, 0.3], [0.2, 0.5, 0.1]), numpy.array([1, -0.9])),
    "FIR, 64 taps": (signal.firwin(64, [3000, 8000], pass_zero=False, fs=SAMPLE_RATE), numpy.array([1.0])),
    "FIR, 7 taps without symmetry": (numpy.array([0.3, -1.25, 2.5, 0.01, -0.75, 0.6, 4.0]), numpy.array([1.0])),
}


for name, (b, a) in filters.items():
    _, h = signal.freqz(b, a, worN=numpy.linspace(0, SAMPLE_RATE / 2, POINTS), fs=SAMPLE_RATE)
    print(name, *(" ".join(repr(float(value)) for value in row) for row in (b, a, h.real, h.imag)), sep="\n")

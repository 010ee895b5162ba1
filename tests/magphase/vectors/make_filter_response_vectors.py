#!/usr/bin/python3
"""Writes FilterResponseVectors.h: responses by scipy.signal.freqz of filters that scipy designed.

Run with scipy 1.10:  make_filter_response_vectors.py > FilterResponseVectors.h
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


def values(array):
    return "{" + ", ".join(repr(float(value)) for value in array) + "}"


print("// Made by make_filter_response_vectors.py with scipy", __import__("scipy").__version__ + "; do not edit.")
print("// clang-format off")
print("#pragma once\n")
print("#include <vector>\n")
print("struct FilterResponseVector {")
print("    const char* name;")
print("    std::vector<double> numerator;")
print("    std::vector<double> denominator;")
print("    std::vector<double> real;")
print("    std::vector<double> imag;")
print("};\n")
print(f"/// Responses at {POINTS} points from 0 to half the sample rate.")
print(f"inline constexpr double vectorSampleRate = {SAMPLE_RATE};")
print("inline const std::vector<FilterResponseVector> filterResponseVectors{")
for name, (b, a) in filters.items():
    frequencies = numpy.linspace(0, SAMPLE_RATE / 2, POINTS)
    _, h = signal.freqz(b, a, worN=frequencies, fs=SAMPLE_RATE)
    print(f'    {{"{name}",\n     {values(b)},\n     {values(a)},\n     {values(h.real)},\n     {values(h.imag)}}},')
print("};")

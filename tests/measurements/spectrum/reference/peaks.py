#!/usr/bin/env python3
"""Writes peaksReference.h: peaks of a noise sequence as scipy.signal.find_peaks sees them.

The definitions agree where no two samples are equal: there is no plateau and no tie. scipy keeps peaks that are at
least `distance` apart, the system those that are more than its distance apart, so `distance` is one sample more here.
"""
import numpy as np
from scipy.signal import find_peaks

COUNT = 4000


def noise():
    """The Lehmer sequence that the test makes as well: exact in integers, so no sample is stored."""
    state = 1
    samples = np.empty(COUNT)
    for i in range(COUNT):
        state = state * 48271 % 2147483647
        samples[i] = state / 2147483647
    return samples


def strongest(samples, count, **conditions):
    found, _ = find_peaks(samples, **conditions)
    return found[np.argsort(samples[found])[::-1]][:count]


def print_plateaus():
    """Samples in steps, with plateaus, ties and slopes that rest: the system takes a plateau at its left edge."""
    samples = noise()[:900]
    smooth = samples[:-3] + samples[1:-2] + samples[2:-1] + samples[3:]
    _, plateaus = find_peaks(np.floor(4 * smooth), plateau_size=1)
    places = ", ".join(str(p) for p in plateaus["left_edges"])
    print("\n/// Left edges of all peaks of floor(4 * the sum of four neighbouring samples), of the first 900 samples.")
    print(f"inline const std::vector<double> plateausReference{{{places}}};")


def main():
    samples = noise()
    assert len(np.unique(samples)) == COUNT
    rows = []
    for count, height, distance, threshold in [
        (5, None, 1, 0.0),
        (60, 0.5, 1, 0.4),
        (40, None, 25, 0.0),
        (60, 0.9, 7.5, 0.1),
    ]:
        found = strongest(samples, count, height=height, threshold=threshold,
                          distance=None if distance == 1 else int(distance) + 1)
        low = "-std::numeric_limits<double>::infinity()" if height is None else repr(height)
        places = ", ".join(str(p) for p in found)
        rows.append(f"    {{{low}, {count}, {distance}, {threshold}, {{{places}}}}},")
    print("// Made by peaks.py with scipy.signal.find_peaks.")
    print("#pragma once\n\n#include <limits>\n#include <vector>\n")
    print("struct PeaksReference {\n    double minHeight;\n    unsigned long numPeaks;\n    double minDistance;")
    print("    double threshold;\n    std::vector<double> locations;\n};\n")
    print("inline const PeaksReference peaksReference[] = {")
    print("\n".join(rows))
    print("};")
    print_plateaus()


if __name__ == "__main__":
    main()

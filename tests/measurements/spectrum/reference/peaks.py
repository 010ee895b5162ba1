#!/usr/bin/env python3
"""Writes peaks.txt: peaks of a noise sequence as scipy.signal.find_peaks sees them.

The first line holds the left edges of all peaks of floor(4 * the sum of four neighbouring samples), of the first 900
samples; each line behind it a minimum height, a number of peaks, a distance, a threshold, and the peaks found.

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


def plateaus():
    """Samples in steps, with plateaus, ties and slopes that rest: the system takes a plateau at its left edge."""
    samples = noise()[:900]
    smooth = samples[:-3] + samples[1:-2] + samples[2:-1] + samples[3:]
    _, found = find_peaks(np.floor(4 * smooth), plateau_size=1)
    return found["left_edges"]


def main():
    samples = noise()
    assert len(np.unique(samples)) == COUNT
    with open("peaks.txt", "w") as out:
        print(*plateaus(), file=out)
        for count, height, distance, threshold in [
            (5, -1e300, 1, 0.0),
            (60, 0.5, 1, 0.4),
            (40, -1e300, 25, 0.0),
            (60, 0.9, 7.5, 0.1),
        ]:
            found = strongest(samples, count, height=height, threshold=threshold,
                              distance=None if distance == 1 else int(distance) + 1)
            print(height, count, distance, threshold, *found, file=out)


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""Times scipy.signal.welch and the spectrum estimator by turns on 16 M samples from memory and prints the ratio.

usage: compare_with_scipy.py build/release/bench/spectrum_estimator_benchmark
"""
import json
import statistics
import subprocess
import sys
import time

import numpy as np
from scipy import signal

ROUNDS = 5


def time_scipy(x):
    start = time.perf_counter()
    signal.welch(x, 1.0, "hann", 1024, 512, detrend=False)
    return time.perf_counter() - start


def time_estimator(program):
    report = subprocess.run([program, "--benchmark_filter=fromMemory", "--benchmark_format=json",
                             "--benchmark_min_time=0.5"], check=True, capture_output=True).stdout
    return json.loads(report)["benchmarks"][0]["real_time"] * 1e-9


def main():
    x = np.random.default_rng(1).standard_normal(1 << 24)
    time_scipy(x)
    rounds = [(time_scipy(x), time_estimator(sys.argv[1])) for _ in range(ROUNDS)]
    ratios = sorted(a / b for a, b in rounds)
    print(f"scipy {statistics.median(a for a, _ in rounds) * 1e3:.0f} ms, "
          f"estimator {statistics.median(b for _, b in rounds) * 1e3:.1f} ms, "
          f"ratio {statistics.median(ratios):.2f} ({ratios[0]:.2f} to {ratios[-1]:.2f})")


main()

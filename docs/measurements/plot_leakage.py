#!/usr/bin/python3
"""Draws what a tone leaves in bands beside its own, from the table that spectrum_leakage_sweep prints.

usage: build/release/bench/spectrum_leakage_sweep | docs/measurements/plot_leakage.py > docs/measurements/leakage.svg
"""
import csv
import sys

WIDTH, HEIGHT = 720, 420
LEFT, RIGHT, TOP, BOTTOM = 60, 16, 16, 44
LOWEST = -200.0
COLOURS = {"filter bank": "#0060a8", "13 taps": "#0060a8", "Hann": "#c05000", "Blackman-Harris": "#208020"}


def x_of(bands, last):
    return LEFT + bands / last * (WIDTH - LEFT - RIGHT)


def y_of(decibels):
    return TOP + max(decibels, LOWEST) / LOWEST * (HEIGHT - TOP - BOTTOM)


def main():
    rows = list(csv.DictReader(sys.stdin))
    distances = [float(row["bands"]) for row in rows]
    last = distances[-1]
    print(f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" '
          f'viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" font-size="13">')
    print(f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>')
    for level in range(0, int(LOWEST) - 1, -20):
        y = y_of(level)
        print(f'<line x1="{LEFT}" y1="{y:.1f}" x2="{WIDTH - RIGHT}" y2="{y:.1f}" stroke="#ddd"/>')
        print(f'<text x="{LEFT - 6}" y="{y + 4:.1f}" text-anchor="end">{level}</text>')
    for half in range(int(2 * last) + 1):
        x = x_of(half / 2, last)
        print(f'<line x1="{x:.1f}" y1="{TOP}" x2="{x:.1f}" y2="{HEIGHT - BOTTOM}" stroke="#ddd"/>')
        print(f'<text x="{x:.1f}" y="{HEIGHT - BOTTOM + 17}" text-anchor="middle">{half / 2:g}</text>')
    print(f'<text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 8}" text-anchor="middle">'
          'distance of the tone from the middle of the band, bands</text>')
    print(f'<text x="16" y="{HEIGHT / 2}" text-anchor="middle" transform="rotate(-90 16 {HEIGHT / 2})">level, dB</text>')
    for place, (name, colour) in enumerate(COLOURS.items()):
        dashes = ' stroke-dasharray="6 4"' if name == "13 taps" else ""
        points = " ".join(f"{x_of(d, last):.1f},{y_of(float(row[name])):.1f}" for d, row in zip(distances, rows))
        print(f'<polyline points="{points}" fill="none" stroke="{colour}" stroke-width="1.5"{dashes}/>')
        y = y_of(-80) + 18 * place
        x = x_of(1.05, last)
        print(f'<line x1="{x}" y1="{y - 4}" x2="{x + 20}" y2="{y - 4}" stroke="{colour}" stroke-width="1.5"{dashes}/>')
        label = {"filter bank": "bank, 12 taps a band", "13 taps": "bank, 13 taps"}.get(name, name)
        print(f'<text x="{x + 26}" y="{y}" font-size="12">{label}</text>')
    print("</svg>")


main()

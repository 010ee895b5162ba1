#!/usr/bin/env python3
"""Plays signals of known properties and compares every figure that is reported with its closed form (cases.py).

    conformance.py PROGRAM PAGE           fails where an error exceeds its tolerance, where a reported figure has no
                                          row, where the page holds other rows than those that were run, and where
                                          a page on a measurement has a worked check that is not among them
    conformance.py PROGRAM PAGE --write   writes the page
"""
import functools
import glob
import json
import os
import re
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
from cases import FILES, GROUPS  # noqa: E402

HOLDER = tempfile.TemporaryDirectory()
FOLDER = HOLDER.name
# What a report repeats of its settings, and counts of what has been played: no figures.
NO_FIGURES = re.compile(r"deck|frames|samples|updates|updatesProcessed|type|units|referenceLoad|requestedRBW|method"
                        r"|window|wholeSegments|(phaseNoise\.spots|channel\.adjacentChannels)\.#\.offset"
                        r"|channel\.(channelStart|channelStop|adjacentBandwidth)"
                        r"|(.*\.)?definitions\..*"
                        r"|.*\.(measured|type|masks|mode|polarity|watched|failing\w+|points|signal|channel)")
HEADER = """# Conformance

Written by `tests/wavedeck/conformance/conformance.py`, which also runs with the tests: they fail when an error exceeds
its tolerance, when a figure of a report has no row here, and when this page holds other rows than those that were run.
Each table can be repeated with the command above it and the options of its row (`--set` before each, but for those that
begin with `--`). The page is written anew by

    python3 tests/wavedeck/conformance/conformance.py build/release/bin/wavedeck docs/conformance.md --write

Expected values are closed forms of the signals and definitions and use nothing of the library; "From" names the
formula. Tolerances are what the method leaves open: rounding, half a sample, the scatter of averaged noise at four
standard deviations (4.34 dB / sqrt(K) for one bin of K averages, less over many bins). Powers are those of a load of
1 ohm unless another is given."""


@functools.lru_cache(maxsize=None)
def played(program, arguments):
    """The report of the deck, its last message, and the exit status."""
    run = subprocess.run([program, "play", *arguments, "--report", "json", "--messages", "messages.jsonl"], cwd=FOLDER,
                         capture_output=True, timeout=300, check=False)
    if run.returncode not in (0, 1) or run.stderr:
        sys.exit(f"{arguments}: status {run.returncode}, {run.stderr.decode()}")
    with open(os.path.join(FOLDER, "messages.jsonl"), encoding="utf-8") as lines:
        message = json.loads(list(lines)[-1])["message"]
    return json.loads(run.stdout)["decks"][0], message, run.returncode


def find(tree, path):
    for part in path.split("."):
        tree = tree[int(part)] if isinstance(tree, list) else tree[part]
    return tree


def leaves(tree, path=""):
    """Paths of all values of a report, with # for places in lists."""
    if isinstance(tree, dict) and set(tree) != {"value", "unit"}:
        for name, value in tree.items():
            yield from leaves(value, f"{path}.{name}" if path else name)
    elif isinstance(tree, list):
        for value in tree:
            yield from leaves(value, path + ".#")
    else:
        yield path


def compare(program):
    """The page, and what is wrong."""
    lines, failures, reported, covered = [HEADER], [], set(), set()
    for title, note, command, rows in GROUPS:
        words = [f"'{word}'" if re.search("[?&]", word) else word for word in command]
        lines += [f"\n## {title}\n\n{note}\n", f"    wavedeck play {' '.join(words)}\n",
                  "| Case | Options | Expected | From | Got | Error | Tolerance | Left open by |",
                  "|---|---|---|---|---|---|---|---|"]
        for case, path, unit, expected, source, tolerance, bound, options in rows:
            deck, message, status = played(program, tuple(command + options.split()))
            reported.update(leaves(deck))
            covered.add(re.sub(r"\.\d+", ".#", path))
            got = find({**deck, "message": message, "status": status}, path)
            got, got_unit = (got["value"], got["unit"]) if isinstance(got, dict) else (got, unit)
            error = float(got) - expected
            if got_unit != unit or not abs(error) <= tolerance:
                failures.append(f"{title}, {case} {options}: {got} {got_unit}, not {expected} {unit} +- {tolerance}")
            cells = (case, options.replace("--set ", ""), f"{expected:.10g} {unit}", source, f"{float(got):.10g}",
                     f"{error:.1e}", f"{tolerance:.2g}", bound)
            lines.append(re.sub(" +", " ", f"| {' | '.join(cells)} |"))
    failures += [path + ": reported, without a row" for path in reported - covered if not NO_FIGURES.fullmatch(path)]
    return "\n".join(lines) + "\n", failures


def unchecked_pages(documents):
    """Pages on measurements without a worked check, and worked checks that are none of the cases."""
    cases = {" ".join(command) for _, _, command, _ in GROUPS}
    for page in sorted(glob.glob(documents + "/measurements/*.md")) + [documents + "/trigger.md"]:
        with open(page, encoding="utf-8") as file:
            commands = re.findall(r"^    wavedeck play (.*)$", file.read().replace("\\\n", ""), re.MULTILINE)
        commands = [" ".join(command.replace("'", "").split()) for command in commands]
        if not commands:
            yield page + ": no worked check"
        yield from (f"{page}: no case is {command}" for command in commands if command not in cases)


def cases_of(text):
    """The page without what differs from one machine to the next: the measured values and their errors."""
    return [re.sub(r"^(\|[^|]*\|[^|]*\|[^|]*\|[^|]*\|)[^|]*\|[^|]*\|", r"\1", line) for line in text.splitlines()]


def main():
    program, page = os.path.abspath(sys.argv[1]), sys.argv[2]
    for name, numbers in FILES.items():
        with open(os.path.join(FOLDER, name), "w", encoding="ascii") as file:
            file.writelines(f"{number}\n" for number in numbers)
    text, failures = compare(program)
    if sys.argv[3:] == ["--write"]:
        with open(page, "w", encoding="utf-8") as file:
            file.write(text)
    with open(page, encoding="utf-8") as file:
        if cases_of(file.read()) != cases_of(text):
            failures.append(f"{page} holds other rows: write it anew")
    failures += unchecked_pages(os.path.dirname(page))
    print("\n".join(failures) or f"{sum(len(rows) for *_, rows in GROUPS)} figures agree")
    return bool(failures)


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Sets each option of each stage and looks for its effect in what comes out of a deck (effects.py, decks.py, flags.py).

    option_effects.py PROGRAM DOCS           fails where an effect is missing, where the catalogue has an option without
                                             a row, and where the page DOCS/option-tests.md holds other rows
    option_effects.py PROGRAM DOCS --both    the same with each option set in turn by a tune and at the setup
    option_effects.py PROGRAM DOCS --write   writes the page
"""
import concurrent.futures
import functools
import json
import math
import os
import re
import signal
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
from decks import DECKS  # noqa: E402
from effects import ALIASES, QUERIES, ROWS, WATCHED  # noqa: E402
from flags import FILES, FLAGS  # noqa: E402

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..")
KINDS = {"char or string": "char", "logicals": "logical", "ints": "int", "doubles": "double", "double or int": "double",
         "cell or strings": "cell"}
HEADER = """# Options against tests

Written by `tests/wavedeck/options/option_effects.py`, which also runs with the tests. It plays the frames of a deck
once with the options under "given" alone and once with the option set besides; "effect" is the condition that must hold
between what the field `was` and what it is `now`. An option is set by a tune between frames where it is read then, else
at the setup. "(at the setup)" marks a row that sets it there in any case: the option says how things begin, the first
span or the first hold trace for instance, and a tune leaves what has begun as it is. The test fails when an effect is
missing, when an option of the catalogue has no row, and when an option that is said to have no effect here changes
anything. Decks and frames stand in `decks.py` beside it. With
`--both` options are set at the setup, too; with `--write` the page is written anew:

    python3 tests/wavedeck/options/option_effects.py build/release/bin/wavedeck docs --write

That an option is taken in its own kind alone, at the actions that the [option reference](options.md) names, is tested
for every option by `tests/catalogue/ExportedOptionsTest.cpp`; figures are held against closed forms on the
[conformance](conformance.md) page.
"""


def read_catalogue(page):
    """Stages with their options, from the reference page, which the tests hold against the catalogue."""
    with open(page, encoding="utf-8") as file:
        text = file.read()
    stages = {}
    for stage in re.split(r"^## ", text, flags=re.MULTILINE)[1:]:
        name = stage.split("\n")[0]
        options = stages.setdefault(name.strip("`") if "_" in name else "host", {})
        for line in re.findall(r"^\| (`.*) \|$", stage, re.MULTILINE):
            cells = line.split(" | ")
            if len(cells) == 3:
                options[cells[0].strip("`")] = {}  # a fact that the host gives
            else:
                options[cells[0].strip("`")] = {"kind": KINDS.get(cells[2], cells[2]), "when": cells[-2]}
    return stages


def typed(kind, text):
    """A value as a script tells it."""
    if kind in ("char", "cell"):
        return {kind: text if kind == "char" else text.split(",")}
    read = {"logical": lambda word: word == "true", "int": int, "double": float}[kind]
    values = [read(word) for word in text.split(",")]
    return {kind: values if len(values) > 1 else values[0]}


class Decks:
    def __init__(self, program, catalogue, both):
        self.program, self.catalogue, self.both = program, catalogue, both

    def options(self, stage, text):
        pairs = (word.split("=", 1) for word in re.split(r"\s+(?=\w+=)", text.strip()) if word)
        return {name: typed(self.catalogue[stage][name]["kind"], value) for name, value in pairs}

    @functools.lru_cache(maxsize=None)
    def played(self, name, stage, given, change="", by_tune=None):
        """What stands on the board after the last frame, in the message, and what the queries give."""
        deck = DECKS[name]
        chain = {member: self.options(member, text) for member, text in deck["chain"].items()}
        chain[stage] |= self.options(stage, given)
        change = self.options(stage, change)
        frames = deck["frames"]
        update = [{"update": False}] if deck["update"] else []
        steps = [{"setup": "all"}, *({"client": facts} for facts in deck.get("then", []))]
        if by_tune is None:
            chain[stage] |= change
        else:
            steps += [*({"frame": frame} for frame in frames), *update, {"tune": stage, "options": change}]
            frames = deck.get("later", frames)
        steps += [*({"frame": frame} for frame in frames), *update, *({"query": query} for query in QUERIES)]
        script = {"client": {"name": "deck", **deck["client"]}, "strategy": deck["strategy"], "watch": WATCHED,
                  "chain": [{"stage": member, "options": values} for member, values in chain.items()], "steps": steps}
        run = subprocess.run([self.program, "run", "-"], input=json.dumps(script).encode(), capture_output=True,
                             timeout=300, check=False)
        if run.returncode or run.stderr:
            sys.exit(f"deck {name}: status {run.returncode}, {run.stderr.decode()}")
        lines = run.stdout.splitlines()
        faults = [json.loads(line)["error"]["text"] for line in lines[:-len(QUERIES)] if b'"error"' in line]
        board, *results = [json.loads(line) for line in lines[-len(QUERIES) - len(update) - 1:]]
        return {"faults": faults, "board": board.get("board"), "message": results[0].get("message"),
                **{query: result.get("query") for query, result in zip(QUERIES, results[len(update):])}}

    def failures(self, row):
        """What does not hold of one row."""
        deck, stage, option, value, given, path, effect = row
        if deck not in DECKS:
            yield from missing_test(deck, path, option)
            return
        option, _, only = option.partition("@")
        actions = only or self.catalogue[stage][option]["when"]
        modes = [True] if "tune" in actions else []
        modes += [None] if "setup" in actions and (self.both or not modes) else []
        for by_tune in modes:
            where = f"{deck}: {stage}.{option}={value} {'by a tune' if by_tune else 'at the setup'}"
            base = self.played(deck, stage, given, by_tune=by_tune)
            values = value.split(" | ")
            results = [self.played(deck, stage, given, f"{option}={one}", by_tune) for one in values]
            for result in (base, *results):
                yield from (f"{where}: {fault}" for fault in result["faults"])
            if effect is None:
                yield from (f"{where}: has an effect" for result in results if result != base)
                continue
            found = [find(result, path) for result in (base, *results)]
            if len({json.dumps(one) for one in found[1:]} | {json.dumps(found[0])}) <= len(values):
                yield f"{where}: {path} is the same with two values: {str(found)[:200]}"
            elif not holds(effect, found[0], found[1]):
                yield f"{where}: not `{effect}`: was {str(found[0])[:200]}, now {str(found[1])[:200]}"


def missing_test(path, test, option):
    """A row may name a test elsewhere: it must be there and have the option in it."""
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        text = file.read()
    yield from (f"{path}: no {word}" for word in (test, option) if word.lower() not in text.lower())


def close(a, b):
    return math.isclose(float(a), float(b), rel_tol=1e-9, abs_tol=1e-12)


def holds(effect, was, now):
    try:
        return eval(effect, {"was": was, "now": now, "close": close, "log10": math.log10})
    except TypeError:  # nothing is there
        return False


def find(tree, path):
    for part in re.sub(r"^\w+", lambda first: ALIASES.get(first[0], first[0]), path).split("."):
        if isinstance(tree, list):
            tree = tree[int(part)] if -len(tree) <= int(part) < len(tree) else None
        else:
            tree = (tree or {}).get(part)
    return tree


class Commands:
    def __init__(self, program):
        self.program = program

    @functools.lru_cache(maxsize=None)
    def ran(self, command, flag=""):
        """Status, output, report, duration and files of a run in a folder of its own."""
        with tempfile.TemporaryDirectory() as folder:
            for name, content in FILES.items():
                with open(os.path.join(folder, name), "wb") as file:
                    file.write(content)
            words = [self.program, *command.split(), *flag.split()]
            words += ["--report", "json"] if "play" in words and not {"--report", "--help"} & set(words) else []
            looped = flag == "--loop"
            words += ["--messages", "-"] if looped else []  # and the report to standard error
            begin = time.monotonic()
            with subprocess.Popen(words, cwd=folder, stdout=subprocess.PIPE, text=True,
                                  stderr=subprocess.PIPE if looped else subprocess.DEVNULL) as run:
                if looped:
                    for _ in range(20):  # more messages than one round has
                        run.stdout.readline()
                    run.send_signal(signal.SIGINT)
                output, errors = run.communicate(timeout=300)
            output = errors if looped else output
            result = {"status": run.returncode, "output": output, "seconds": time.monotonic() - begin, "files": {}}
            result["report"] = json.loads(output) if output.startswith("{") else None
            for name in set(os.listdir(folder)) - set(FILES):
                with open(os.path.join(folder, name), encoding="utf-8") as file:
                    result["files"][name] = file.read()
            return result

    def failures(self, row):
        command, flag, path, effect = row
        if path.startswith("tests/"):
            yield from missing_test(path, effect, flag.split()[0])
            return
        was, now = find(self.ran(command), path), find(self.ran(command, flag), path)
        if not holds(effect, was, now):
            yield f"wavedeck {command} {flag}: not `{effect}`: was {str(was)[:200]}, now {str(now)[:200]}"

    def without_row(self):
        for command in ("", "play", "run", "options"):
            known = set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", self.ran(command, "--help")["output"], re.MULTILINE))
            rows = {row[1].split()[0] for row in FLAGS if row[0].split()[:1] == command.split()}
            yield from (f"wavedeck {command} {flag}: no row" for flag in sorted(known - rows))


def code(text):
    return f"`{text}`" if text else ""


def page(catalogue):
    """The rows as a document."""
    lines = [HEADER]
    for stage, options in catalogue.items():
        if options:
            lines += ["## " + (code(stage) if "_" in stage else "What the host gives") + "\n",
                      "| Option | set to | deck | given | field | effect |",
                      "|---|---|---|---|---|---|"]
        for deck, of_stage, option, value, given, path, effect in ROWS:
            if of_stage != stage:
                continue
            option, _, when = option.partition("@")
            cells = [code(option) + (f" (at the {when})" if when else ""), " ".join(map(code, value.split(" | ")))]
            if deck not in DECKS:
                cells += ["", "", f"{code(path)} in `{deck}`", effect]
            elif effect is None:
                cells += [deck, code(given), "everything", "none: " + path]
            else:
                cells += [deck, code(given), code(path), "differs" if effect == "True" else code(effect)]
            lines.append(f"| {' | '.join(cells)} |".replace("|  |", "| |").replace("|  |", "| |"))
        lines += [""] if options else []
    lines += ["## The command line\n", "| wavedeck | flag | field | effect |", "|---|---|---|---|"]
    for command, flag, path, effect in FLAGS:
        shown = (code(effect) + " in " if "/" in path else "") + code(path)
        lines.append(f"| {code(command.strip())} | {code(flag)} | {shown} | {'' if '/' in path else code(effect)} |")
    return "\n".join(lines) + "\n"


def main():
    program, docs = os.path.abspath(sys.argv[1]), sys.argv[2]
    catalogue = read_catalogue(os.path.join(docs, "options.md"))
    decks, commands = Decks(program, catalogue, "--both" in sys.argv), Commands(program)
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        found = [*pool.map(lambda row: list(decks.failures(row)), ROWS),
                 *pool.map(lambda row: list(commands.failures(row)), FLAGS), commands.without_row()]
    failures = [failure for some in found for failure in some]
    known = {(stage, option) for stage, options in catalogue.items() for option in options}
    failures += [f"{stage}.{option}: no row" for stage, option in
                 sorted(known - {(stage, option.partition("@")[0]) for _, stage, option, *_ in ROWS})]
    path = os.path.join(docs, "option-tests.md")
    if "--write" in sys.argv:
        with open(path, "w", encoding="utf-8") as file:
            file.write(page(catalogue))
    with open(path, encoding="utf-8") as file:
        if file.read() != page(catalogue):
            failures.append(f"{path} holds other rows: write it anew")
    print("\n".join(failures) or f"{len(known)} options of {len(catalogue) - 1} stages and {len(FLAGS)} flags have "
                                 "their effects")
    return bool(failures)


if __name__ == "__main__":
    sys.exit(main())

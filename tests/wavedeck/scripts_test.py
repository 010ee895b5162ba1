"""Runs every script of the folder `scripts` and holds the results against what its steps expect; and faulty scripts."""
import glob
import json
import math
import os
import subprocess
import sys
import unittest

PROGRAM = sys.argv.pop(1)
FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "scripts")


def run(script, **options):
    return subprocess.run([PROGRAM, "run", script], capture_output=True, timeout=300, **options)


class Scripts(unittest.TestCase):
    maxDiff = None

    def compare(self, found, expected, tolerance, where):
        """Expected members must be there and agree; null stands for a member that is absent."""
        if isinstance(expected, dict):
            self.assertIsInstance(found, dict, where)
            for name, value in expected.items():
                if value is None:
                    self.assertNotIn(name, found, where)
                else:
                    self.assertIn(name, found, where)
                    self.compare(found[name], value, tolerance, f"{where}.{name}")
        elif isinstance(expected, list):
            self.assertIsInstance(found, list, where)
            self.assertEqual(len(found), len(expected), where)
            for index, value in enumerate(expected):
                self.compare(found[index], value, tolerance, f"{where}[{index}]")
        elif isinstance(expected, float) and isinstance(found, (int, float)):
            self.assertTrue(math.isclose(found, expected, rel_tol=tolerance, abs_tol=tolerance * 1e-3),
                            f"{where}: {found!r}, not {expected!r}")
        else:
            self.assertEqual(found, expected, where)

    def test_scripts(self):
        scripts = sorted(glob.glob(os.path.join(FOLDER, "*.json")))
        self.assertTrue(scripts)
        for path in scripts:
            with self.subTest(script=os.path.basename(path)):
                first, second = run(path), run(path)
                self.assertEqual((first.returncode, first.stderr), (0, b""))
                self.assertEqual(first.stdout, second.stdout, "a second run gave other bytes")
                with open(path, encoding="utf-8") as file:
                    steps = json.load(file)["steps"]
                results = [json.loads(line) for line in first.stdout.splitlines()]
                self.assertEqual(len(results), len(steps))
                for index, (step, result) in enumerate(zip(steps, results)):
                    expected = {"error": None} | step.get("expect", {})
                    self.compare(result, expected, step.get("tolerance", 1e-12), f"step {index}")

    def test_faulty_scripts_say_where(self):
        def script(**members):
            base = {"client": {"name": "c", "signals": [{"channels": 1}]}, "chain": [],
                    "strategy": "dsp_wavedeck_frame_data_strategy", "steps": []}
            return json.dumps(base | members, indent=1)

        def steps(*list_):
            return script(chain=[{"stage": "magnitude_phase_filter"}], steps=list(list_))

        for text, expected in [
            ("{\n\n \"client\" 1}", "line 3: this is no JSON"),
            ("[1,\n2", "line 2: "),
            ("", "line 1: "),
            ("{\"client\": 1,\n\"client\": 2}", "line 2: the member \"client\" is given twice"),
            ("[]", "line 1: expected an object, found a list"),
            ("{}", "line 1: expected a member \"client\""),
            (script(client={"name": "c"}), "line 2: expected a member \"signals\""),
            (script(client={"name": "c", "signals": [], "colour": 1}), "line 5: expected one of the members timeBased"),
            (script(client={"name": "a name of 16 ch", "signals": [{"channels": -1}]}), "expected a number of channels"),
            (script(client={"name": "sixteen letters!", "signals": [{}]}), "15 characters"),
            (script(strategy="frame"), "expected the name of a stage of the library that ends in _strategy"),
            (script(chain=[{"stage": "no_filter"}]), "ends in _filter, found the text \"no_filter\""),
            (script(watch="x"), "expected a list of board entries"),
            (steps({"setup": "signal_statistics_filter"}), "expected a stage of the chain or \"all\""),
            (steps({"tune": "all"}), "expected a stage of the chain"),
            (steps({"setup": "all", "update": True}), "expected a step with one of setup"),
            (steps({"dance": 1}), "expected one of the members setup"),
            (steps({"frame": []}), "expected one entry for each of the 1 signals"),
            (steps({"frame": [{"raw": [[1, 2], [1]]}]}), "expected channels of one length"),
            (steps({"frame": [{"raw": [[1, "x"]]}]}), "expected a number, found the text \"x\""),
            (steps({"frame": [{"gen": "tune", "samples": 1}]}), "gen:tune: no such test signal"),
            (steps({"query": "getNothingImpl"}), "expected the name of a query function"),
            (steps({"tune": "magnitude_phase_filter", "options": {"autoSpan": {"bool": True}}}), "one of the kinds"),
            (steps({"tune": "magnitude_phase_filter", "options": {"autoSpan": {"int": 0.5}}}), "whole number of 32"),
        ]:
            with self.subTest(expected=expected):
                result = run("-", input=text.encode())
                errors = result.stderr.decode()
                self.assertEqual((result.returncode, result.stdout, errors.count("\n")), (2, b"", 1), errors)
                self.assertIn("standard input: ", errors)
                self.assertIn(expected, errors)
        missing = run(os.path.join(FOLDER, "none.json"))
        self.assertEqual(missing.returncode, 2)
        self.assertIn(b"none.json: No such file", missing.stderr)


if __name__ == "__main__":
    unittest.main()

"""What goes over the wire, both ways, against docs/messages.schema.json; and the example client."""
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import unittest

import jsonschema
import websocket

PROGRAM = sys.argv.pop(1)
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
sys.dont_write_bytecode = True
sys.path.append(os.path.join(ROOT, "scripts"))
import message_fields  # noqa: E402

with open(os.path.join(ROOT, "docs", "messages.schema.json"), encoding="utf-8") as file:
    SCHEMA = json.load(file)


def validator(definition):
    return jsonschema.Draft202012Validator({"$ref": "#/$defs/" + definition, "$defs": SCHEMA["$defs"]})


class Server:
    """`wavedeck play ARGUMENTS --serve` on a free port; ends with the block."""

    def __init__(self, *arguments):
        self.program = subprocess.Popen([PROGRAM, "play", *arguments, "--serve", "0"], stdout=subprocess.DEVNULL,
                                        stderr=subprocess.PIPE, text=True)
        line = self.program.stderr.readline()
        self.address = "ws:" + re.search(r"display at http:(\S+)", line).group(1) + "live"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.program.send_signal(signal.SIGINT)
        try:
            self.program.wait(timeout=60)
        finally:
            self.program.kill()
            self.program.stderr.close()


class Messages(unittest.TestCase):
    def check(self, message, definition):
        errors = [f"{'/'.join(map(str, e.absolute_path))}: {e.message[:200]}" for e in validator(definition).iter_errors(message)]
        self.assertEqual(errors[:5], [])

    def test_the_schema_is_one(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        with open(os.path.join(ROOT, "docs", "message-fields.md"), encoding="utf-8") as page:
            self.assertEqual(page.read(), message_fields.page(SCHEMA), "message_fields.py writes the page anew")

    def test_every_deck(self):
        short = ["--frame", "256", "--updates", "5"]
        with tempfile.TemporaryDirectory() as folder:
            taps, gaps = os.path.join(folder, "taps"), os.path.join(folder, "gaps")
            with open(taps, "w", encoding="utf-8") as file:
                file.write("0.25\n0.5\n0.25\n")
            with open(gaps, "wb") as file:
                file.write(b"\0\0\xc0\x7f\0\0\x80\x3f" * 4000)  # NaN and 1
            pulses = "gen:pulse?period=10m&width=3m&rise=1m&fall=1m&duration=0.5&rate=8k"
            for definition, arguments, expected in [
                ("time", [pulses, "--measure", "stats,peaks,bilevel,trigger", "--span-time", "0.05"],
                 {"stats", "peaks", "bilevel", "trigger"}),
                ("time", [gaps, "--format", "f32", "--rate", "8k"], {"stats"}),
                ("frame", [pulses, "--measure", "stats,peaks"], {"stats", "peaks"}),
                ("response", [taps], {"peaks"}),
                ("spectrum", [pulses, "gen:tone?rate=8k&duration=0.5", "--measure", "peaks,channel,distortion,phasenoise,mask",
                              "--set", "enabledMasks=upper", "--set", "upperMask=100", "--set", "plotMaxHoldTrace=true",
                              "--set", "plotMinHoldTrace=true"], {"peaks", "channel", "distortion", "spectralMask"}),
                ("time", [pulses, "--blockflow", "--measure", "stats,peaks,bilevel,trigger"], {"stats", "bilevel"}),
                ("spectrum", [pulses, "--blockflow", "--measure", "peaks,channel"], {"peaks", "channel"}),
                ("spectrum", [gaps, "--format", "f32", "--rate", "8k", "--measure", "channel", "--set", "showSpectrogram=true",
                              "--set", "channelMeasurementsType=acpr"], {"channel"}),
            ]:
                run = subprocess.run([PROGRAM, "play", *arguments, "--deck", definition, *short, "--messages", "-"],
                                     capture_output=True, timeout=300, check=True)
                lines = [json.loads(line) for line in run.stdout.splitlines()]
                with self.subTest(deck=definition, arguments=arguments):
                    self.assertTrue(lines)
                    for line in lines:
                        self.check(line["message"], definition + "Message")
                        self.assertEqual(line["client"], definition)
                    self.check(lines[0], "line")
                    self.assertLessEqual(expected, set(lines[-1]["message"]["measurements"]))

    def test_the_live_connection(self):
        estimator, trigger = "spectrum_estimator_filter", "trigger_filter"
        with Server("gen:tone?duration=inf&rate=8k", "--deck", "spectrum", "--deck", "time") as server:
            live = websocket.create_connection(server.address, timeout=60)
            seen = {}

            def answer(kind, client="", stage="", options=None):
                """The first message of that kind, behind a tune if there are options."""
                if options is not None:
                    live.send(json.dumps({"type": "tune", "request": 7, "client": client, "stage": stage, "options": options}))
                while True:
                    message = json.loads(live.recv())
                    if message["type"] not in seen or message["type"] == "error":
                        self.check(message, message["type"])
                    seen[message["type"]] = message
                    if message["type"] == kind:
                        return message

            answer("update")
            self.assertEqual(next(iter(seen)), "hello")
            for client, stage, options, reason in [
                ("frame", trigger, {"level": 1}, "no client `frame`"),
                ("spectrum", trigger, {"level": 1}, "trigger_filter: no option `level` in this deck"),
                ("spectrum", estimator, {"colour": "red"}, "spectrum_estimator_filter: no option `colour` in this deck"),
                ("spectrum", estimator, {"frequencyOffset": "x"}, "frequencyOffset"),
                ("spectrum", estimator, {"window": 7}, "window"),
                ("spectrum", estimator, {"window": {"a": 1}}, "window"),
                ("time", trigger, {"mode": "sometimes"}, "mode"),
            ]:
                refused = answer("error", client, stage, options)
                self.assertEqual(refused["request"], 7)
                self.assertIn(reason, refused["text"])
            live.send("not a tune")
            answer("error")
            self.check({"type": "tune", "request": 7, "client": "spectrum", "stage": estimator, "options": {"rbw": "50"}}, "tune")
            self.assertEqual(answer("tuned", "spectrum", estimator, {"rbw": "50"})["request"], 7)
            options = {option["name"]: option["value"] for client in seen["hello"]["clients"] if client["name"] == "spectrum"
                       for stage in client["stages"] for option in stage["options"] if stage["name"] == estimator}
            self.assertEqual((options["rbw"], options["window"]), (50, "hann"))
            live.close()

    def test_the_example_client(self):
        with Server("gen:tone?frequency=1k&duration=inf&rate=8k", "--deck", "spectrum") as server:
            run = subprocess.run([sys.executable, os.path.join(ROOT, "examples", "live_client.py"), server.address],
                                 capture_output=True, timeout=300, text=True, check=True)
        lines = run.stdout.splitlines()
        self.assertEqual(len(lines), 20)
        self.assertTrue(all(abs(float(line.split()[0]) - 1000) < 5 for line in lines), lines)
        bandwidths = [float(line.split()[-2]) for line in lines]
        self.assertAlmostEqual(bandwidths[-1], 10, delta=0.5)
        self.assertGreater(abs(bandwidths[0] - 10), 0.5)


if __name__ == "__main__":
    unittest.main()

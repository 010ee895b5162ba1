"""What each flag of the command line changes: (command line, flag with its value, field, effect), as in effects.py."""
import hashlib
import json
import struct

SAMPLES = [((7 * n) % 100 - 50) / 100 for n in range(4000)]
FILES = {"samples.f32": struct.pack("<4000f", *SAMPLES), "samples.bin": struct.pack("<4000f", *SAMPLES),
         "sum.sigmf-data": b"abc", "sum.sigmf-meta": json.dumps({"global": {
             "core:datatype": "ri8", "core:sample_rate": 5, "core:sha512": hashlib.sha512(b"abc").hexdigest()}}).encode(),
         "two.csv": "a,b\n".encode() + b"".join(b"%g,%g\n" % (x, -x) for x in SAMPLES), "there.csv": b"",
         "script.json": json.dumps({"client": {"name": "c", "signals": [{}]}, "chain": [], "steps": [],
                                    "strategy": "dsp_wavedeck_frame_data_strategy"}).encode()}
TONE = "play gen:tone?rate=8k&duration=0.5 "
FLAGS = [
    ("play samples.bin --rate 8k", "--format f32", "status", "was == 2 and now == 0"),
    ("play samples.f32", "--rate 8k", "report.inputs.0.rate.value", "now == 8000"),
    ("play samples.f32 --rate 8k", "--channels 2", "report.inputs.0.channels", "was == 1 and now == 2"),
    ("play samples.f32 --rate 8k", "--scale 2", "report.inputs.0.maximum", "close(now, 2 * was)"),
    ("play two.csv --rate 8k", "--iq", "report.inputs.0.complex", "was is False and now is True"),
    (TONE + "--deck spectrum", "--center 1M", "report.decks.0.peaks.peaks.0.frequency.value", "close(now, was + 1e6)"),
    (TONE, "--seek 0.125", "report.inputs.0.samples", "was == 4000 and now == 3000"),
    (TONE, "--duration 0.125", "report.inputs.0.samples", "was == 4000 and now == 1000"),
    (TONE, "--deck frame", "report.decks.0.deck", "was == 'time' and now == 'frame'"),
    (TONE + "--deck spectrum", "--set numPeaks=1", "report.decks.0.peaks.peaks", "now == was[:1]"),
    (TONE, "--measure none", "report.decks.0.stats", "was is not None and now is None"),
    (TONE, "--frame 100", "report.decks.0.frames", "was == 4 and now == 40"),
    (TONE + "--frame 100", "--updates 4", "report.decks.0.updates", "was == 10 and now == 2"),
    (TONE + "--deck time", "--span-time 0.1", "report.decks.0.span.value", "was == 0.625 and now == 0.1"),
    (TONE, "--speed 4", "seconds", "now > 0.12"),
    (TONE.replace("gen", "gen:tone?duration=0.1&rate=8k gen"), "--realtime", "seconds", "now > 0.48"),
    (TONE + "--deck time", "--blockflow", "report.decks.0.stats", "now != was"),
    (TONE, "--messages messages", "files.messages", "was is None and now.startswith('{')"),
    (TONE + "--deck time", "--traces traces", "files.traces", "was is None and 'time (s)' in now"),
    (TONE, "--sweep sweep", "files.sweep", "was is None and now.count(',') > 100"),
    (TONE, "--annotations notes", "files.notes", "was is None and 'annotations' in now"),
    (TONE + "--deck time --traces there.csv", "--overwrite", "status", "was == 2 and now == 0"),
    (TONE, "--report text", "report", "was is not None and now is None"),
    (TONE, "--loop", "report.inputs.0.samples", "was == 4000 and now > 4000"),  # until an interrupt comes
    ("play sum.sigmf-meta", "--verify", "report.inputs.0.checksum", "'not' in was and now.endswith('agrees')"),
    (TONE, "--serve", "tests/wavedeck/messages_test.py", "Server"),
    ("play", "--help", "status", "was == 2 and now == 0"),
    ("run script.json", "--help", "output", "was == '' and 'SCRIPT' in now"),
    ("options", "--help", "output", "'STAGE' in now"),
    ("", "--help", "status", "was == 2 and now == 0"),
    ("", "--version", "output", "now.strip().split('.')[0].isdigit()"),
]

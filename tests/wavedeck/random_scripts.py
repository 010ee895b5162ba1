"""Random scripts through the program: whatever comes in whatever order, no script ends it but by its last step.

    random_scripts.py PROGRAM [SECONDS [SEED]]

Runs for that time (5 s). A script that fails is kept, and its seed printed: SECONDS 0 with that SEED runs it alone. Built
with sanitizers the program tells what a script does to memory.
"""
import json
import random
import subprocess
import sys
import tempfile
import time

# Decks: strategy, stages, and the options that a tune may bring, with values right and wrong.
TRUTH = [{"logical": True}, {"logical": False}]
SELECTED = [{"int": value} for value in (0, 0, 1, 3, -1)]
NUMBERS = [{"double": value} for value in (0, 1, -1, 0.5, 1e-9, 1e12, "nan", "inf", "-inf")]
LISTS = [{"double": value} for value in ([], [0], [1, 2], [3, -1, 4, 0.5], ["nan", 1])]
WRONG = [{"double": []}, {"char": "?"}, {"cell": []}, {"int": 2147483647}, {"property": True}]
TEXTS = [{"char": value} for value in ("0", "1", "-Inf", "Inf", "nan", "2.5", "1e3")]
SAMPLES = [0, 0, 1, -1, 0.5, 2.25, 1e300, -1e300, 5e-324, "nan", "inf", "-inf"]

COMMON = {"measurementSignal": SELECTED, "measurementChannel": SELECTED}
SPANS = {"autoSpan": TRUTH, "customSpan": NUMBERS}
STATISTICS = COMMON | SPANS | {name: TRUTH for name in ("showMean", "showMedian", "showVariance",
                                                        "signalStatisticsEnabled")}
PEAKS = COMMON | SPANS | {"numPeaks": [{"int": value} for value in (0, 1, 3, 100)], "peakFinderEnabled": TRUTH,
                          "minHeight": TEXTS, "minDistance": TEXTS, "threshold": TEXTS}
PULSES = COMMON | SPANS | {name: TRUTH for name in ("showTransitions", "showAberrations", "showCycles",
                                                    "autoStateLevel", "bilevelMeasurementsEnabled")}
PULSES |= {name: NUMBERS for name in ("highStateLevel", "lowStateLevel", "stateLevelTolerance", "midReferenceLevel",
                                      "settleSeek")}
WORDS = {"mode": "auto normal once off", "polarity": "rising falling either inside outside",
         "type": "edge pulse-width transition runt window timeout"}
TRIGGER = SPANS | {name: [{"char": word} for word in words.split()] for name, words in WORDS.items()}
TRIGGER |= {name: NUMBERS for name in ("position", "level", "hysteresis", "highLevel", "lowLevel", "timeout", "delay",
                                       "holdoff")}
TRIGGER |= {name: TRUTH for name in ("autoLevel", "rearm", "triggerEnabled")} | {"triggerChannel": SELECTED}
TRACES = {name: TRUTH for name in ("normalTraceData", "maxHoldTraceData")}
ESTIMATOR = {name: [{"char": word} for word in words.split()] for name, words in {
    "method": "welch filter-bank", "frequencyRange": "centered one-sided", "spectrumType": "power power-density rms",
    "window": "hann kaiser flat-top rectangular", "spectrumUnits": "dbm watts dbfs vrms",
    "averagingMethod": "exponential vbw running", "frequencySpan": "full start-and-stop-frequencies"}.items()}
ESTIMATOR |= {name: TRUTH for name in ("autoRBW", "showSpectrum", "showSpectrogram", "plotMaxHoldTrace",
                                       "plotMinHoldTrace", "autoTimeResolution", "autoTimeSpan")}
ESTIMATOR |= {"rbw": [{"double": v} for v in (5, 10, 50)], "overlapPercent": [{"double": v} for v in (0, 50, 90)],
              "startFrequency": [{"double": v} for v in (-100, 0)], "stopFrequency": [{"double": v} for v in (50, 200)],
              "spectralAverages": [{"double": v} for v in (1, 4)], "forgettingFactor": [{"double": v} for v in (0, 0.9)],
              "timeResolution": [{"double": v} for v in (0.01, 0.1)]}
DECKS = [
    ("dsp_wavedeck_time_data_strategy", {
        "simulation_meta_data_filter": COMMON, "magnitude_phase_filter": SPANS,
        "dsp_wavedeck_measurements_data_cache_filter": COMMON, "time_signal_statistics_filter": STATISTICS,
        "time_peak_finder_filter": PEAKS, "bilevel_measurements_filter": PULSES, "trigger_filter": TRIGGER}),
    ("dsp_wavedeck_frame_data_strategy", {
        "simulation_meta_data_filter": COMMON, "magnitude_phase_filter": SPANS, "signal_statistics_filter": STATISTICS,
        "peak_finder_filter": PEAKS}),
    ("dsp_wavedeck_frequency_data_strategy", {
        "simulation_meta_data_filter": COMMON, "spectrum_estimator_filter": ESTIMATOR,
        "frequency_peak_finder_filter": PEAKS | TRACES | {"frequencyLimits": [{"double": [-200, 200]}, {"double": [0, 50]}]},
        "channel_measurements_filter": COMMON | TRACES | {
            "channelMeasurementsEnabled": TRUTH, "measurementChannelStartFrequency": NUMBERS,
            "channelMeasurementsType": [{"char": "acpr"}, {"char": "occupied-bandwidth"}],
            "filterShape": [{"char": "rrc"}, {"char": "gaussian"}], "acprOffsets": LISTS},
        "distortion_measurements_filter": COMMON | TRACES | {
            "distortionMeasurementsEnabled": TRUTH, "numHarmonics": SELECTED,
            "distortionType": [{"char": "harmonic"}, {"char": "intermodulation"}]},
        "phase_noise_filter": {"phaseNoiseEnabled": TRUTH, "phaseNoiseFrequencyOffset": LISTS},
        "spectral_mask_tester_filter": {
            "spectralMaskEnabled": TRUTH, "enabledMasks": [{"char": "upper-and-lower"}, {"char": "none"}],
            "upperMask": [{"char": "10"}, {"char": "-100,100,-10,-10"}, {"char": "Inf"}],
            "referenceLevel": [{"char": "spectrum-peak"}], "spectralMaskChannel": SELECTED}}),
]


class Writer:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def options(self, known, count):
        chosen = self.random.sample(sorted(known), min(count, len(known)))
        return {name: self.random.choice(WRONG if self.random.random() < 0.05 else known[name]) for name in chosen}

    def frame(self, signals):
        entries = []
        for signal in signals:
            points = self.random.choice((0, 1, 2, 7, 64, 300))
            if self.random.random() < 0.6:
                kind = self.random.choice(("noise", "square?frequency=7", "tone?frequency=31", "chirp?stop=200"))
                join = "&" if "?" in kind else "?"
                kind += f"{join}channels={signal['channels'] // (2 if signal['complex'] else 1)}"
                if not signal["complex"] or "square" not in kind:
                    kind += f"&complex={'true' if signal['complex'] else 'false'}"
                    entries.append({"gen": kind, "samples": points})
                    continue
            entries.append({"raw": [[self.random.choice(SAMPLES) for _ in range(points)]
                                    for _ in range(signal["channels"])]})
        return {"frame": entries, "repeat": self.random.choice((1, 1, 1, 5))}

    def step(self, signals, stages):
        kind = self.random.random()
        stage = self.random.choice(list(stages))
        if kind < 0.55:
            return self.frame(signals)
        if kind < 0.70 and stages[stage]:
            return {"tune": stage, "options": self.options(stages[stage], self.random.randint(1, 4))}
        if kind < 0.80:
            return {"update": self.random.random() < 0.8}
        if kind < 0.84:
            marks = [self.random.random() < 0.5 for _ in signals]
            stage = "magnitude_phase_filter" if "magnitude_phase_filter" in stages else stage
            return {"tune": stage, "options": {"magPhaseData": {"logical": marks}}}
        if kind < 0.87:
            for signal in signals:
                signal["channels"] = self.random.randint(1, 3) * (2 if signal["complex"] else 1)
            return {"size": {"numChannels": [signal["channels"] for signal in signals],
                             "frameSize": [self.random.choice((1, 16, 300)) for _ in signals]}}
        if kind < 0.90:
            return {"rollback": "all", "options": {"rollbacktime": {"double": self.random.choice((-1, 0, 0.5, 1, 100))}}}
        if kind < 0.93:
            return {"reset": self.random.choice(["all", stage])}
        if kind < 0.96:
            return {"setup": self.random.choice(["all", stage])}
        return self.random.choice([{"replay": True}, {"client": {"source": "repository"}}, {"client": {"source": "live"}},
                                   {"client": {"displaySpan": self.random.choice((0.01, 1, 50))}}])

    def script(self):
        strategy, stages = self.random.choice(DECKS)
        signals = []
        for _ in range(self.random.choice((1, 1, 2, 3))):
            complex_ = self.random.random() < 0.3
            signals.append({"channels": self.random.randint(1, 2) * (2 if complex_ else 1), "complex": complex_,
                            "sampleTime": 0.002 if "frequency" in strategy else self.random.choice((0.002, 0.1)),
                            "frameSize": 300})
        chain = []
        for stage, known in stages.items():
            enabled = {name: {"logical": True} for name in known if name.endswith("Enabled")}
            chain.append({"stage": stage, "options": enabled})
        return {"client": {"name": "random", "signals": [dict(signal) for signal in signals]}, "chain": chain,
                "strategy": strategy, "watch": ["signalStats", "peakFinder", "bilevelMeasurements"],
                "steps": [{"setup": "all"}] + [self.step(signals, stages) for _ in range(60)]}


def main():
    program = sys.argv[1]
    seconds = float(sys.argv[2]) if len(sys.argv) > 2 else 5.0
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    end = time.monotonic() + seconds
    count = 0
    while count == 0 or time.monotonic() < end:
        script = Writer(seed).script()
        run = subprocess.run([program, "run", "-"], input=json.dumps(script).encode(), capture_output=True, timeout=300)
        lines = run.stdout.splitlines()
        if run.returncode != 0 or run.stderr or len(lines) != len(script["steps"]):
            with tempfile.NamedTemporaryFile("w", suffix=".json", delete=False) as file:
                json.dump(script, file, indent=1)
            print(f"seed {seed}: status {run.returncode} after {len(lines)} of {len(script['steps'])} steps, {file.name}")
            print(run.stderr.decode(errors="replace")[:4000])
            return 1
        for line in lines:
            json.loads(line)
        seed += 1
        count += 1
    print(f"{count} scripts")
    return 0


if __name__ == "__main__":
    sys.exit(main())

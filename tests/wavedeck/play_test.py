"""Black-box runs of `wavedeck play`: what it prints, what it writes, and with which status it ends."""
import array
import cmath
import json
import math
import os
import pty
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import wave

PROGRAM = sys.argv.pop(1)


def words(arguments):
    """Of arguments that may be several words each."""
    return [word for argument in arguments for word in argument.split(" ")]


def play(*arguments, **options):
    return subprocess.run([PROGRAM, "play", *words(arguments)], capture_output=True, timeout=300, **options)


def report_of(*arguments, **options):
    run = play(*arguments, "--report", "json", **options)
    return run, json.loads(run.stdout)


def wait_until(condition):
    end = time.monotonic() + 60
    while not condition():
        if time.monotonic() > end:
            raise TimeoutError
        time.sleep(0.01)


def waits_and_catches_interrupts(process):
    with open(f"/proc/{process.pid}/status", encoding="ascii") as lines:
        status = {line.split()[0]: line.split()[1] for line in lines if len(line.split()) > 1}
    return status["State:"] == "S" and int(status["SigCgt:"], 16) >> (signal.SIGINT - 1) & 1


def begin(*arguments, **options):
    return subprocess.Popen([PROGRAM, "play", *words(arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            **options)


def lines_of(path):
    with open(path, encoding="utf-8") as file:
        return file.read().splitlines()


def messages_of(path):
    return [json.loads(line) for line in lines_of(path)]


def rows_of(path):
    return [line.split(",") for line in lines_of(path) if not line.startswith("#")]


class Folder(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = holder.name

    def out(self, name):
        return os.path.join(self.folder, name)

    def path(self, name, content=b""):
        with open(self.out(name), "wb") as file:
            file.write(content)
        return self.out(name)

    def wav(self, name, samples, channels=1):
        with wave.open(self.out(name), "wb") as file:
            file.setparams((channels, 2, 8000, 0, "NONE", ""))
            file.writeframes(array.array("h", samples).tobytes())
        return self.out(name)

    def sigmf(self, values, captures, **more):
        """A recording of complex samples at 256 kHz; captures are (first sample, centre frequency, time)."""
        self.path("r.sigmf-data", b"".join(struct.pack("<2f", z.real, z.imag) for z in values))
        names = ("core:sample_start", "core:frequency", "core:datetime")
        facts = {"core:datatype": "cf32_le", "core:sample_rate": 256e3} | more.pop("facts", {})
        return self.path("r.sigmf-meta", json.dumps({
            "global": facts, "captures": [dict(zip(names, capture)) for capture in captures]} | more).encode())


class BadInput(Folder):
    def check(self, arguments, expected, status=2, **options):
        run = play(*arguments, **options)
        errors = run.stderr.decode()
        self.assertEqual(run.returncode, status, errors)
        self.assertEqual(errors.count("\n"), 1, errors)
        self.assertIn(expected, errors)
        return run

    def test_unusable_inputs_and_values(self):
        tone = "gen:tone?duration=10m"
        raw = self.path("raw", b"\0" * 8)
        self.path("raw-meta", b"\0" * 8)
        recording = self.path("r.sigmf-meta", b'{"global":{"core:dataset":"other.bin"}}')
        self.path("other.bin", b"\0" * 8)
        for arguments, expected in [
            ([], "INPUT is required"),
            ([tone, "--deck", "tone"], "--deck: `tone` is none of"),
            ([tone, "--deck", "time", "--deck", "time"], "given twice"),
            ([tone, "--measure", "stat"], "--measure: `stat` is none of"),
            ([tone, "--set", "showMean"], "is not of the form"),
            ([tone, "--set", "showAverage=true"], "--set showAverage: no such option"),
            ([tone, "--set", "showMean=yes"], "--set showMean: showMean: `yes` is not true or false"),
            ([tone, "--set", "measurementChannel=1.5"], "`1.5` is not a whole number"),
            ([tone, "--set", "xyz.showMean=true"], "no stage `xyz`"),
            ([tone, "--set", "magnitude.showMean=true"], "no such option"),
            ([tone, "--deck", "frame", "--set", "s.showMean=true"], "may be"),
            ([tone, "--set", "timeRange=1"], "follows from the signals"),
            ([tone, "--frame", "0"], "--frame: `0` is not a whole number of at least 1"),
            ([tone, "--updates", "0"], "--updates: 0 is not above 0"),
            ([tone, "--span-time", "1s"], "--span-time: `1s` is not a number"),
            ([tone, "--report", "xml"], "--report: `xml` is neither"),
            ([tone, "--messages", self.folder + "/no/file"], "No such file"),
            ([tone, "--rate", "8k"], "--rate: goes with raw samples"),
            ([tone, "--scale", "2"], "--scale: goes with files"),
            ([tone, "--sweep", "-", "--messages", "-"], "--sweep: --messages goes to standard output too"),
            ([raw, "--format", "f32", "--rate", "5", "--messages", raw], "raw is an input"),
            ([raw + "-meta", "--format", "cf32", "--rate", "5", "--annotations", raw + "-meta"], "raw-meta is an input"),
            ([recording, "--traces", self.folder + "/other.bin", "--overwrite"], "other.bin is an input"),
            ([self.folder + "/r.sigmf-data", "--traces", recording, "--overwrite"], "r.sigmf-meta is an input"),
            ([tone, "--annotations", "-"], "--annotations: wants a file"),
            ([tone, "--verify"], "--verify: goes with SigMF"),
            ([tone, "--iq"], "--iq: goes with sound files and tables"),
            ([tone, "--speed", "0"], "--speed: 0 is not above 0"),
            ([tone, "--speed", "2", "--realtime"], "--realtime says the speed already"),
            ([tone, "--seek", "1"], "--seek: gen:tone?duration=10m ends at 10 ms"),
            (["-", "--format", "csv"], "standard input: holds no row of numbers"),
            ([tone, "--traces", "x"] + ["--deck", "time", "--deck", "frame"], "--traces: say of which deck"),
            ([tone, "--sweep", "x", "--deck", "time"], "--sweep: none of the chosen decks is a spectrum"),
            ([tone, "--annotations", "x", "--measure", "none"], "neither peaks nor mask is measured"),
            ([tone, "--annotations", "x", "--loop"], "goes with one input that is played once"),
            ([tone, "--measure", "channel", "--deck", "time"], "none of the chosen decks measures channel"),
            ([tone, "--deck", "response", "--deck", "time"], "takes one file of coefficients"),
            ([self.path("taps", b"0.5\n\n0.5x\n"), "--deck", "response"], "taps: line 3: expected one coefficient"),
            ([self.path("none", b"# none\n"), "--deck", "response"], "holds no coefficients"),
            ([tone, "--deck", "response", "--iq"], "--iq: of no use to --deck response"),
            ([tone, "--traces", "response=x"], "the deck `response` is not played"),
            ([tone, "--traces", "spectrun=x"], "only time, spectrum; a file of this name is ./spectrun=x"),
            ([tone, "--traces", "no/such=x"], "no/such=x"),
            (["-", "-", "--format", "f32", "--rate", "5"], "standard input is given twice"),
            ([tone, "--set", "centerFrequency=25k"], "centerFrequency: 25 kHz does not lie within 0 Hz to 24 kHz"),
            ([tone, "--seek", ""], "--seek: is empty"),
            (["a\nb\x1b.wav"], "a?b?.wav: No such file"),
            ([tone, "--frobnicate"], "--frobnicate"),
        ]:
            with self.subTest(arguments=arguments):
                self.check(arguments, expected, stdin=subprocess.DEVNULL)

    def test_damaged_ends_are_told_and_the_rest_is_measured(self):
        cut = self.wav("cut.wav", [100] * 1000)
        os.truncate(cut, 44 + 2 * 600 + 1)
        half = self.path("half.raw", struct.pack("<3f", 1, 2, 3) + b"\0\0")
        for arguments, samples, expected in [
            ([cut], 600, "cut short"),
            ([half, "--format", "f32", "--rate", "1k"], 3, "the last 2 bytes"),
            ([self.wav("none.wav", [])], 0, "holds no samples"),
        ]:
            run = self.check([*arguments, "--report", "json"], expected, status=0)
            report = json.loads(run.stdout)
            self.assertEqual(report["inputs"][0]["samples"], samples)
            self.assertIn(expected, report["warnings"][0])

    def test_what_was_measured_before_a_fault_is_reported(self):
        table = self.path("fault.csv", b"1\n2\n6\nx\n")
        run = self.check([table, "--rate", "5", "--report", "json"], "fault.csv: line 4: expected numbers")
        report = json.loads(run.stdout)
        self.assertEqual(report["decks"][0]["stats"]["mean"], 3)
        self.assertIn("line 4", report["ended"])

    def test_what_there_was_nothing_of_to_measure_is_told(self):
        run = play(self.path("still.csv", b"1\n" * 2000), "--rate 1k --measure bilevel")
        lines = {tuple(line.split()) for line in run.stdout.decode().splitlines()}
        self.assertLessEqual({("rise", "time", "nan"), tuple("spectra 0 (the input ended before the first)".split())},
                             lines)

    def test_a_full_disk_leaves_no_half_line(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("no /dev/full")
        self.check(["gen:tone?duration=1", "--messages", "/dev/full"], "No space left")
        with open("/dev/full", "wb") as full:
            run = subprocess.run([PROGRAM, "options"], stdout=full, stderr=subprocess.PIPE, check=False)
        self.assertEqual((run.returncode, b"standard output: No space left" in run.stderr), (2, True))

    def test_closed_streams_lend_their_place_to_no_file(self):
        samples = self.path("samples", b"\0" * 800)
        messages = self.out("messages")
        shell = 'exec "$0" play "$1" --format f32 --rate 1k --deck time --messages "$2" <&- >&-'
        run = subprocess.run(["sh", "-c", shell, PROGRAM, samples, messages], stderr=subprocess.PIPE, check=False)
        self.assertEqual((run.returncode, run.stderr), (2, b"wavedeck: standard output: Bad file descriptor\n"))
        self.assertEqual({line["client"] for line in messages_of(messages)}, {"time"})


class Results(Folder):
    def test_report_names_what_was_played(self):
        path = self.wav("two.wav", [v for i in range(4000) for v in (i, -i)], channels=2)
        run, report = report_of(path, "--deck", "time", "--deck", "frame", "--frame", "1000")
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        entry = report["inputs"][0]
        self.assertEqual(entry["rate"], {"value": 8000.0, "unit": "Hz"})
        self.assertEqual(entry["format"], "WAV (Microsoft), Signed 16 bit PCM")
        self.assertEqual(entry["duration"], {"value": 0.5, "unit": "s"})
        self.assertEqual((entry["channels"], entry["samples"], entry["complex"]), (2, 4000, False))
        self.assertEqual((entry["maximum"], entry["minimum"]), (3999 / 32768, -3999 / 32768))
        self.assertEqual([deck["deck"] for deck in report["decks"]], ["time", "frame"])
        frame = report["decks"][1]
        self.assertEqual((frame["frames"], frame["samples"]), (4, 8000))
        # The last frame of channel 0 runs from 3000 to 3999.
        self.assertAlmostEqual(frame["stats"]["mean"], 3499.5 / 32768, delta=1e-15)
        self.assertEqual((frame["stats"]["maximum"], frame["stats"]["maximumPosition"]), (3999 / 32768, 999))

    def test_centre_frequencies_of_a_recording_move_the_axis(self):
        # A tone 16 kHz above the centre; the second capture lies elsewhere.
        metadata = self.sigmf((cmath.rect(0.5, i * math.pi / 8) for i in range(12000)), [(0, 100e6), (5000, 433.92e6)])
        for more, center in [("", 433.92e6), (" --duration 15m", 100e6), (" --set frequencyOffset=5k", 5e3)]:
            _, report = report_of(metadata + " --deck spectrum" + more)
            deck = report["decks"][0]
            self.assertEqual(deck["peaks"]["peaks"][0]["frequency"]["value"], center + 16e3)
            # Centered spectra of an even number of bins begin one bin above half the rate below the middle.
            self.assertAlmostEqual(deck["stop"]["value"], center + 128e3, delta=1e-6)
            self.assertAlmostEqual(deck["start"]["value"], center - 128e3, delta=600)
        self.assertEqual(report["inputs"][0]["samples"], 12000)

    def test_each_capture_has_its_own_time_and_each_failure_its_own_band(self):
        # Two tones 24 and -40 kHz from the centre, 34 and 54 dB over a mask; the second capture is a year later.
        metadata = self.sigmf((cmath.rect(1, i * 0.1875 * math.pi) + cmath.rect(0.1, -i * 0.3125 * math.pi)
                               for i in range(51200)),
                              [(0, 1e6, "2026-01-01T00:00:00Z"), (25600, 1e6, "2027-01-01T00:00:00Z")])
        notes = self.out("n.sigmf-meta")
        run = play(metadata, "--deck spectrum --measure mask --set enabledMasks=upper --set upperMask=-24 --sweep -",
                   "--updates 10 --frame 1600 --annotations", notes)
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertEqual([line[:20] for line in run.stdout.decode().splitlines()],
                         ["2026-01-01, 00:00:00", "2027-01-01, 00:00:00"])
        annotations = json.loads("".join(lines_of(notes)))["annotations"]
        bands = sorted((note["core:freq_lower_edge"], note["core:freq_upper_edge"]) for note in annotations)
        for (lower, upper), place in zip(bands, (960e3, 1024e3), strict=True):
            # The main lobe of the window is four bins wide.
            self.assertTrue(place - 600 < lower < place < upper < place + 600, bands)
        self.assertTrue(annotations[0]["core:comment"].startswith("34 dB outside of the mask at 960 kHz"), annotations)

    def test_settings_reach_their_stages(self):
        _, report = report_of("gen:tone?duration=0.1&channels=2&amplitude=2 --deck frame --set showVariance=true",
                              "--set signal_st.showMedian=false --set measurementChannel=1")
        stats = report["decks"][0]["stats"]
        self.assertNotIn("median", stats)
        self.assertIn("variance", stats)
        self.assertEqual(stats["measured"], "signal 0, channel 1")
        two = "gen:tone?duration=0.1&channels=2&complex=true"
        filters = self.path("filters.txt", b"1\n1\n")
        for source, arguments, expected in [
            (two, "frame --set measurementChannel=1", "channel 1 (real part)"),
            (two, "frame --set measurementChannel=3", "channel 3 (imaginary part of channel 1)"),
            (two, "time --set measurementChannel=2 --set magPhaseData=true", "channel 2 (phase of channel 0)"),
            (two, "time --set measurementChannel=4", "channel 4 (not there)"),
            (two, "spectrum --set measurementChannel=1", "channel 1"),
            (two, "spectrum --set measurementChannel=2", "channel 2 (not there)"),
            (two, "spectrum --set measurementSignal=1", "channel 0 (not there)"),
            (filters, "response", "channel 0 (magnitude)"),
            (filters, "response --set measurementChannel=1", "channel 1 (phase of channel 0)"),
            (filters, "response --set measurementChannel=1 --set magPhaseData=false", "channel 1 (not there)"),
        ]:
            deck = report_of(source, "--measure peaks --deck " + arguments)[1]["decks"][0]
            self.assertEqual(deck["peaks"]["measured"].split(", ")[1], expected)

    def test_a_value_that_is_set_counts(self):
        for settings, figure, expected in [
            ("rbw=100", "rbw", 100), ("windowLength=500", "segmentLength", 500), ("span=2k", "rbw", 2e3 / 1024),
            ("startFrequency=1k", "rbw", 23e3 / 1024), ("stopFrequency=5k", "rbw", 5e3 / 1024),
            ("centerFrequency=1k", "rbw", 2e3 / 1024), ("spectralAverages=7", "averages", 7),
            ("rbw=100 --set autoRBW=true", "rbw", 24e3 / 1024), ("upperMask=-99", "mask", False),
        ]:
            with self.subTest(settings=settings):
                _, report = report_of("gen:tone?duration=1 --deck spectrum --measure mask --set", settings)
                found = report["decks"][0][figure]
                value = found.get("value", found.get("passing")) if isinstance(found, dict) else found
                self.assertAlmostEqual(value, expected, delta=1e-3 * expected)
        run = play("gen:tone?duration=1 --deck spectrum --set lowerMask=10")
        self.assertEqual(run.returncode, 1, "a mask that is set is tested")

    def test_the_type_of_a_spectrum_alone_makes_its_unit_a_density(self):
        for units, unit in [("dbm", "dBm"), ("dbm/hz", "dBm"), ("watts", "W"), ("auto", "W")]:
            for density, expected in [("power", unit), ("power-density", unit + "/Hz")]:
                _, report = report_of("gen:tone?duration=1 --deck spectrum --set spectrumUnits=" + units,
                                      "--set spectrumType=" + density)
                deck = report["decks"][0]
                self.assertEqual(deck["peaks"]["peaks"][0]["level"]["unit"], expected)
                self.assertEqual("of 1 Hz" in deck["definitions"]["noiseFloors.level"], density == "power-density")

    def test_messages_from_input_to_output_hold_every_sample_and_every_gap(self):
        run = play("- --format f64 --rate 1k --deck frame --messages - --report json",
                   input=struct.pack("<4d", 0.5, math.nan, -2.0, math.inf))
        entry = json.loads(run.stderr)["inputs"][0]
        self.assertEqual((run.returncode, entry["samples"], entry["notFinite"]), (0, 4, 2))
        line = json.loads(run.stdout)
        self.assertEqual((line["client"], line["event"]), ("frame", "updateDataAsync"))
        [channel] = line["message"]["signals"][0]["channel"]
        self.assertEqual((channel["data"], channel["NaNIdx"]), ([0.5, 0, -2.0, 0], [1, 3]))
        self.assertEqual(channel["sample"], [0, 0.001, 0.002, 0.003])

    def test_signals_of_several_inputs(self):
        run, report = report_of("gen:tone?rate=48k&duration=0.5", "gen:noise?rate=44100&duration=1", "--deck", "time")
        self.assertEqual(run.returncode, 0)
        self.assertEqual([entry["samples"] for entry in report["inputs"]], [24000, 44100])
        self.assertEqual(report["decks"][0]["samples"], 24000 + 44100)

    def test_figures_are_those_of_the_picture(self):
        messages = self.path("messages")
        # The span ends between two samples, so that rounding has no say in how many there are.
        pulses = ("gen:pulse?rate=8k&period=23m&width=9m&rise=2m&noise=10m&duration=1 --deck time --span-time 0.20005",
                  "--messages", messages, "--measure")

        def pictures():
            for line in messages_of(messages):
                [channel] = line["message"]["signals"][0]["channel"]
                yield channel["time"], channel["data"], line["message"]["measurements"]

        play(*pulses, "stats,peaks")
        for times, data, figures in pictures():
            at = dict(zip(times, data))
            stats = {name: float(text) for name, text in figures["stats"].items() if text}
            self.assertEqual([at[stats["xMax"]], at[stats["xMin"]]], [max(data), min(data)])
            self.assertAlmostEqual(stats["mean"], math.fsum(data) / len(data), delta=1e-12)
            for place, peak in zip(*(json.loads(figures["peaks"][key]) for key in ("locations", "peaks"))):
                self.assertAlmostEqual(at[place], peak, delta=1e-14)
        self.assertEqual(len(data), 1601)
        play(*pulses, "trigger")
        for times, data, figures in list(pictures())[2:]:  # behind a free run
            start, end, position, level = (float(figures["trigger"][key])
                                           for key in ("startTime", "endTime", "position", "level"))
            self.assertTrue(times[0] <= start < times[1] and times[-1] < end <= times[-1] + 1 / 8000)
            behind = next(i for i, time in enumerate(times) if time >= position)
            self.assertTrue(data[behind - 1] <= level <= data[behind])

    def test_a_simulation_counts_and_measures_as_the_stream_does(self):
        # All that came is shown: by the stream while its span is longer, by the simulation in its first span.
        pulses = "gen:pulse?rate=8k&period=23m&width=9m&rise=2m&fall=3m&noise=10m&duration=0.5 --span-time 0.5 "
        several = "gen:noise?complex=true&rate=32k&duration=0.256&channels=2 gen:chirp?rate=16k&duration=0.256"
        figures = ("frames", "samples", "stats", "peaks", "bilevel")
        for arguments, compared in ((pulses + "--frame 100", figures), (pulses + "--frame 1", figures),
                                    (several, figures[:2])):
            arguments += " --deck time --measure stats,peaks,bilevel"
            _, stream = report_of(arguments)
            run, simulation = report_of(arguments, "--blockflow")
            self.assertEqual((run.returncode, run.stderr), (0, b""))
            for figure in compared:
                self.assertEqual(simulation["decks"][0][figure], stream["decks"][0][figure])

    def test_spectra_of_a_simulation_are_those_of_the_stream(self):
        def spectra(*arguments):
            path = self.path("messages")
            run = play(*arguments, "--deck spectrum --measure peaks,channel --messages", path)
            self.assertEqual(run.returncode, 0, run.stderr)
            parts = ("spectrum", "signals", "measurements")
            return [[message["message"].get(part) for part in parts] for message in messages_of(path)]

        noise = "gen:noise?rate=48k&complex=true&channels=2&duration=0.75 "
        chirp = "gen:chirp?rate=48k&duration=0.75 "
        port = self.path("port", struct.pack("36d", *[100.0] * 36))  # one value a frame of 1000
        raw = "--format f64 --rate 48 --set inputPortRBW=true"
        for source, frame, settings in (
                (noise + chirp, "1000", ""), (chirp, "1", ""), (noise + chirp, "100", "showSpectrogram=true"),
                (chirp + noise, "6000", "showSpectrogram=true --updates 6"),
                (noise + chirp, "1000", "overlapPercent=50 --set plotMaxHoldTrace=true --set plotMinHoldTrace=true"),
                (noise + chirp, "1000", "method=filter-bank --set frequencyRange=one-sided"),
                (noise + chirp, "3000", "showSpectrogram=true --set timeResolution=0.1")):
            arguments = f"{source}--frame {frame}" + (" --set " + settings if settings else "")
            plain = spectra(arguments)
            self.assertGreater(len(plain), 3)
            self.assertEqual(spectra(arguments, "--blockflow"), plain)
        for source, settings, ports in (
                (chirp + noise, "--set rbw=100", f"{port} {raw}"),
                (chirp, "--set rbw=100 --set vbw=100", f"{port} {port} {raw} --set inputPortVBW=true")):
            self.assertEqual(spectra(source + ports, "--frame 1000 --blockflow"),
                             spectra(source + settings, "--frame 1000"))

    def test_a_display_that_falls_behind_holds_the_simulation_and_it_goes_on(self):
        # The messages do not fit the pipe: while nobody reads, the display stands still and the simulation runs ahead.
        run = begin("gen:tone?rate=1M&duration=0.6 --deck time --blockflow --realtime --updates 100 --messages -",
                    "--report json")
        run.stdout.read(1)
        time.sleep(0.3)
        messages, report = run.communicate(timeout=300)
        deck = json.loads(report)["decks"][0]
        self.assertGreater(deck["held"], 0)
        self.assertEqual((deck["frames"], deck["updates"]), (585, messages.count(b"\n")))

    def test_what_is_preset_follows_the_signal(self):
        # Both sides of a complex signal; spots at the decades; updates that the trigger waits for.
        _, report = report_of("gen:tone?frequency=-6k&complex=true --deck spectrum --measure peaks,phasenoise",
                              "--set numPeaks=1 --set spectrumUnits=watts")
        deck = report["decks"][0]
        self.assertLess(deck["start"]["value"], -23900)
        self.assertEqual(deck["peaks"]["peaks"][0]["frequency"]["value"], -6000)
        self.assertAlmostEqual(deck["peaks"]["peaks"][0]["level"]["value"], 1.0, delta=1e-9)
        self.assertEqual([row["offset"]["value"] for row in deck["phaseNoise"]["spots"]], [1000, 10000])
        acpr = "gen:noise --deck spectrum --measure channel --set channelMeasurementsType=acpr"
        channel = report_of(acpr)[1]["decks"][0]["channel"]
        self.assertEqual([channel[edge]["value"] for edge in ("channelStart", "channelStop")], [10e3, 14e3])
        self.assertEqual([row["offset"] for row in channel["adjacentChannels"]],
                         [{"value": offset, "unit": "Hz"} for offset in (4e3, 8e3)])
        taps = self.path("taps.txt", b"# half\n0.5\n\n0.5  # the rest\n")
        response = report_of(taps, "--deck response --rate 8k")[1]["decks"][0]["response"]
        self.assertEqual((response["stopFrequency"]["value"], response["points"]), (4000, 2048))

    def test_linked_options_are_set_once(self):
        # Units and type of the measurements follow the estimator; a name of several meanings is told.
        run, report = report_of("gen:noise --deck spectrum --measure channel --set spectrumUnits=dbw")
        self.assertEqual((run.stderr, report["decks"][0]["channel"]["channelPower"]["unit"]), (b"", "dBW"))
        self.assertAlmostEqual(report["decks"][0]["channel"]["channelPower"]["value"], -20, delta=0.5)
        run, report = report_of("gen:noise --deck spectrum --set frequencyLimits=0,1k")
        self.assertIn(b"means different things: frequency_peak_finder_filter", run.stderr)
        self.assertEqual(len(report["warnings"]), 1)

    def test_the_same_input_gives_the_same_bytes(self):
        runs = {play("gen:noise?duration=0.2&seed=7 --messages - --deck time").stdout for _ in range(2)}
        self.assertEqual(len(runs), 1)

    def test_the_first_frame_is_measured_whole_and_a_longer_span_is_told(self):
        run, report = report_of("gen:ramp?rate=1k&frequency=1&duration=1 --deck time --frame 1k")
        self.assertEqual((run.stderr, report["decks"][0]["stats"]["minimum"]), (b"", -1))
        run, _ = report_of("gen:ramp?rate=1k&duration=1 --deck time --span-time 6")
        self.assertIn(b"over the newest 5000 samples, 5 s", run.stderr)


class EarlyEnds(Folder):
    def test_an_interrupt_reports_what_was_measured(self):
        messages = self.path("messages.jsonl")
        for source in ("gen:tone?duration=inf", "- --format f32 --rate 1k"):
            with self.subTest(source=source):
                run = begin(source, "--deck time --realtime --report json --messages", messages, stdin=subprocess.PIPE)
                wait_until(lambda: waits_and_catches_interrupts(run) and ("-" in source or os.path.getsize(messages)))
                run.send_signal(signal.SIGINT)
                time.sleep(0.01)
                run.send_signal(signal.SIGINT)  # the same wish, as it may also come to the group of the process
                # Standard input stays open: the wait for samples itself must end.
                output = run.stdout.read()
                self.assertEqual((run.wait(60), run.stderr.read()[:8]), (0, b"" if "gen" in source else b"wavedeck"))
                self.assertEqual(json.loads(output)["ended"], "interrupted")
                messages_of(messages)
                for pipe in (run.stdin, run.stdout, run.stderr):
                    pipe.close()

    def test_a_broken_pipe_ends_cleanly(self):
        run = begin("gen:tone?duration=inf --messages - --report json")
        json.loads(run.stdout.readline())
        run.stdout.close()
        report = json.loads(run.stderr.read())
        self.assertEqual((run.wait(60), report["ended"]), (0, "nobody reads the messages any more"))
        run.stderr.close()

    def test_progress_shows_on_a_terminal_alone(self):
        ours, theirs = pty.openpty()
        subprocess.run([PROGRAM, "play", "gen:tone?duration=0.5", "--deck", "time", "--realtime"],
                       stdout=subprocess.DEVNULL, stderr=theirs, timeout=60, check=True)
        os.close(theirs)
        shown = os.read(ours, 65536)
        os.close(ours)
        self.assertIn(b"of 500 ms", shown)
        self.assertTrue(shown.endswith(b"\r\x1b[K"))


class ExportedFiles(Folder):
    def test_every_figure_has_its_definition(self):
        def undefined(section):
            definitions = section.get("definitions", {})
            for key, value in section.items():
                if isinstance(value, list) and key != "warnings":
                    yield from (f"{key}.{column}" for row in value for column in row
                                if f"{key}.{column}" not in definitions)
                elif isinstance(value, dict) and "unit" not in value and key != "definitions":
                    yield from (f"{key}: {figure}" for figure in undefined(value))
                elif key != "definitions" and not isinstance(value, (bool, str)) and key not in definitions:
                    yield key

        everything = "stats,peaks,bilevel,trigger,channel,distortion,phasenoise,mask"
        square = "gen:square?duration=0.2 --deck time --deck spectrum "
        for arguments in [
            f"{square}--deck frame --measure {everything} --set enabledMasks=upper --set showVariance=true "
            "--set showMeanSquare=true --center 1M",
            square + "--measure channel,distortion --set channelMeasurementsType=acpr "
            "--set distortionType=intermodulation",
            square + "--blockflow",
            self.path("taps", b"1\n" * 5) + " --deck response",
        ]:
            _, report = report_of(arguments)
            self.assertEqual([figure for section in report["inputs"] + report["decks"]
                              for figure in undefined(section)], [], arguments)

    def test_traces_sweeps_and_annotations_tell_what_the_report_tells(self):
        values = [cmath.rect(0.5, i * math.pi / 8) for i in range(65536)]
        recording = self.sigmf(values, [(7, 1e6, "2026-02-28T23:59:59.9Z")],
                               facts={"core:offset": 7, "core:author": "me"},
                               annotations=[{"core:sample_start": 65000, "core:sample_count": 3}])
        spectrum, times, sweep, notes = map(self.out, ["s.csv", "t.csv", "sweep.csv", "n.sigmf-meta"])
        arguments = [recording, "--deck spectrum --deck time --measure peaks,mask --set enabledMasks=upper --seek 0.1",
                     "--set upperMask=20 --set numPeaks=1 --set plotMaxHoldTrace=true"]
        files = ["--traces", spectrum, "--traces", "time=" + times, "--sweep", sweep, "--annotations", notes]
        run, report = report_of(*arguments, *files)
        self.assertEqual(run.returncode, 1, run.stderr)  # the mask fails
        deck = report["decks"][0]
        peak = deck["peaks"]["peaks"][0]
        rows = rows_of(spectrum)
        rbw = f"{deck['rbw']['value']:.6g} Hz"
        self.assertEqual(rows[0], ["frequency (Hz)", f"signal 0 channel 0 (dBm; RBW {rbw})",
                                   f"maximum hold signal 0 channel 0 (dBm; RBW {rbw})"])
        levels = {float(row[0]): float(row[1]) for row in rows[1:]}
        self.assertEqual(levels[peak["frequency"]["value"]], peak["level"]["value"])
        self.assertEqual((min(levels), max(levels)), (deck["start"]["value"], deck["stop"]["value"]))
        last = struct.unpack("<2f", struct.pack("<2f", values[-1].real, values[-1].imag))
        self.assertEqual([float(cell) for cell in rows_of(times)[-1]], [65535 / 256e3, *last])
        lines = rows_of(sweep)
        date, clock, low, high, step = lines[-1][:5]
        self.assertEqual((date, clock), ("2026-03-01", " 00:00:00"))
        self.assertEqual(sum(int(line[5]) for line in lines), 65536 - 25600)
        self.assertEqual(len(lines[-1]) - 6, len(levels))
        self.assertAlmostEqual(float(low), min(levels), delta=1e-6)
        self.assertAlmostEqual(float(high), float(low) + len(levels) * float(step), delta=1e-3)
        strongest = max(range(len(levels)), key=lambda i: float(lines[-1][6 + i]))
        self.assertAlmostEqual(float(low) + strongest * float(step), peak["frequency"]["value"], delta=1e-3)
        self.assertAlmostEqual(float(lines[-1][6 + strongest]), peak["level"]["value"], delta=5e-4)
        metadata = json.loads("".join(lines_of(notes)))
        facts = metadata["global"]
        self.assertEqual((facts["core:dataset"], facts["core:author"]), ("r.sigmf-data", "me"))
        found = [(note["core:sample_start"], note["core:sample_count"], note.get("core:label"))
                 for note in metadata["annotations"]]
        whole = (7 + 25600, 65536 - 25600)
        self.assertEqual(found, [(*whole, "peak"), (*whole, "mask failure"), (65000, 3, None)])
        edges = metadata["annotations"][0]
        self.assertTrue(edges["core:freq_lower_edge"] < peak["frequency"]["value"] < edges["core:freq_upper_edge"])
        # What is there stays, unless it is to be replaced; and the new metadata lead to the same samples.
        for option, path in zip(files[::2], files[1::2]):
            run = play(*arguments, option, path)
            self.assertEqual((run.returncode, run.stderr.count(b"\n")), (2, 1), run.stderr)
            self.assertIn(b"is there already; --overwrite", run.stderr)
        before = json.dumps(metadata)
        run, again = report_of(notes, *arguments[1:], *files, "--overwrite")
        self.assertEqual((run.returncode, again["decks"][0]["peaks"]), (1, deck["peaks"]))
        self.assertEqual(len(json.loads("".join(lines_of(notes)))["annotations"]), 5, before)
        run = play(*arguments, "--traces", "/dev/stdout", "--overwrite")
        self.assertTrue(run.stdout.startswith(b"# input: "), run.stderr)
        self.assertEqual([name for name in os.listdir(self.folder) if name.endswith(".part")], [])


if __name__ == "__main__":
    unittest.main()

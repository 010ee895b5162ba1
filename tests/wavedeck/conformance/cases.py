"""Signals of known properties, and the closed forms of what is measured on them: formulas of the signal, of published
windows, of the definitions that docs/measurements states. Nothing here comes from the library.
"""
import math

PI = math.pi
GROUPS = []  # (title, note, command line, rows)
FILES = {"two.txt": [0.6, 0.4], "eight.txt": [0.125] * 8}

# Tolerances and what leaves them open.
EXACT = (0, "")
ROUND = (1e-12, "rounding")
FINE = (1e-9, "rounding")  # of larger figures
# dB: four standard deviations of a bin of noise, times the root of the averages. Signals last for twice as many
# segments, for the running average to get there.
SCATTER = 4 * 4.343


def group(title, note, command, rows):
    """rows: (figure, path, unit, expected, where from, tolerance, left open by[, options])

    A path leads through the report of the deck, or through its last "message", or is "status".
    """
    GROUPS.append((title, note, command.split(), [row if len(row) > 7 else (*row, "") for row in rows]))


def db(power):
    return 10 * math.log10(power)


def dbm(amplitude):
    """Level of a sinusoid into 1 ohm."""
    return db(amplitude**2 / 2) + 30


def root(function, low, high):
    """Where a function that rises from below 0 to above crosses it."""
    for _ in range(200):
        middle = (low + high) / 2
        low, high = (middle, high) if function(middle) < 0 else (low, middle)
    return low


# --- time ------------------------------------------------------------------------------------------------------------

def statistics():
    n, step = 1000, 2 / 1000  # all of -1, -0.998 ... 0.998 once, in the order 7 k mod 1000
    mean, variance = -1 / n, step**2 * n * (n + 1) / 12
    square = variance * (n - 1) / n + mean**2
    place = 999 * pow(7, -1, n) % n
    rows = [("maximum", "", 1 - step, "1 - step"), ("maximumPosition", "s", place / 1e3, "7 k mod 1000 = 999"),
            ("minimum", "", -1, "k = 0"), ("minimumPosition", "s", 0, "k = 0"), 
            ("peakToPeak", "", 2 - step, "2 - step"), ("mean", "", mean, "-step / 2"),
            ("median", "", mean, "-step / 2"),
            ("variance", "", variance, "step^2 N (N + 1) / 12"),
            ("standardDeviation", "", math.sqrt(variance), "its root"),
            ("meanSquare", "", square, "variance (N - 1) / N + mean^2"), ("rms", "", math.sqrt(square), "its root")]
    group("Statistics", "A ramp of 7 periods in 1000 samples takes each of 1000 levels once.",
          "gen:ramp?rate=1k&frequency=7&duration=1 --deck time --frame 1000 --measure stats --set showVariance=true "
          "--set showMeanSquare=true",
          [(name, "stats." + name, unit, value, source, *ROUND) for name, unit, value, source in rows])


def spans():
    """A ramp that tells the time of each sample: t / 5 - 1."""
    rows = []
    for case, first, source, options in [
            ("live", 5, "the newest 5000 samples", ""),
            ("live, span of 2 s", 7.999, "2 s before the newest sample", "--span-time 2"),
            ("simulation, span of 4 s", 8, "the span under way: from 2 x 4 s", "--span-time 4 --blockflow --frame 100")]:
        rows += [(case + ": first sample", "stats.minimumPosition", "s", first, source, *ROUND, options),
                 (case + ": its value", "stats.minimum", "", first / 5 - 1, "t / 5 - 1", *ROUND, options)]
    rows.append(("simulation: times held", "held", "", 0, "goes at full speed", *EXACT, rows[-1][-1]))
    group("Span of the time measurements", "One ramp of 10 s: the minimum is the first sample that is measured.",
          "gen:ramp?rate=1k&frequency=0.1&duration=10 --deck time --measure stats", rows)


def ringing(damping):
    """Step response of a second-order system by wn t, and its damped frequency over wn."""
    damped = math.sqrt(1 - damping**2)

    def response(t):
        return 1 - math.exp(-damping * t) * (math.cos(damped * t) + damping / damped * math.sin(damped * t))
    return response, damped


def time_peaks():
    response, damped = ringing(0.2)
    w, half = 2 * PI * 100, 0.5 / 40e3
    rows = [("number of peaks", "peaks.count", "", 3, "as many as wanted", *EXACT)]
    for i in range(3):
        t = (2 * i + 1) * PI / damped
        path = f"peaks.peaks.{i}."
        rows.append((f"time of peak {i + 1}", path + "time", "s", t / w, f"{2 * i + 1} pi / wd", half, "half a sample"))
        rows.append((f"peak {i + 1}", path + "value", "", response(t), "1 + exp(-d wn t)",
                     (response(t) - 1) * (w * half)**2 / 2, "curvature"))
    group("Peaks in time", "Overshoots of a damped system, wn = 2 pi 100 Hz, d = 0.2, wd = wn sqrt(1 - d^2).",
          "gen:step?rate=40k&at=0&frequency=100&damping=0.2&duration=0.1 --deck time --span-time 0.1 "
          "--measure peaks", rows)


LEVELS = "--set autoStateLevel=false --set highStateLevel=1 --set lowStateLevel=0 "


def pulses():
    rows = [("highStateLevel", "", 1, "as told"), ("lowStateLevel", "", 0, "as told"),
            ("amplitude", "", 1, "high - low"), ("posEdges", "", 5, "5 periods"), ("riseTime", "s", 40e-6, "0.8 rise"),
            ("posSlewRate", "1/s", 2e4, "1 / rise"), ("negEdges", "", 5, "5 periods"),
            ("fallTime", "s", 80e-6, "0.8 fall"), ("negSlewRate", "1/s", -1e4, "-1 / fall"),
            ("posPreshoot", "%", 0, "straight"),
            ("negPreshoot", "%", 0, "straight"), ("posSettlingTime", "s", 24e-6, "0.48 rise"),
            ("negSettlingTime", "s", 48e-6, "0.48 fall"), ("period", "s", 1e-3, "period"),
            ("frequency", "Hz", 1e3, "1 / period"), ("posPulses", "", 5, "5 periods"), ("posWidth", "s", 3e-4, "width"),
            ("posDutyCycle", "%", 30, "width / period"), ("negPulses", "", 4, "between 5"),
            ("negWidth", "s", 7e-4, "period - width"), ("negDutyCycle", "%", 70, "the rest")]
    group("Pulses", "Straight edges of 50 us up and 100 us down.",
          "gen:pulse?rate=1M&duration=5m&fall=100u --deck time --measure bilevel --set settleSeek=0.2m " + LEVELS,
          [(name, "bilevel." + name, unit, value, source, 1e-12 * abs(value or 1), "rounding")
           for name, unit, value, source in rows])
    rows = [("highStateLevel", 0.995, "bin 100"), ("lowStateLevel", 0.005, "bin 1"), ("amplitude", 0.99, "high - low")]
    group("State levels of pulses", "The middle of the fullest of 100 bins between minimum and maximum.",
          "gen:pulse?rate=1M&duration=5m --deck time --measure bilevel",
          [(name, "bilevel." + name, "", value, source, *ROUND) for name, value, source in rows])


def aberrations():
    response, damped = ringing(0.3)
    w, sample = 2 * PI * 1e3, 1e-6

    def crossing(level):
        return root(lambda t: response(t) - level, 0, PI / damped)
    rise = crossing(0.9) - crossing(0.1)
    end = crossing(0.98) + 3 * rise
    over, slew = 100 * math.exp(-0.3 * PI / damped), 0.8 * w / rise
    under, slope = 100 * (1 - response(end)), 100 * abs(response(end) - response(end - w * sample))
    settled = max(t / 1e4 for t in range(400000) if abs(response(t / 1e4) - 1) > 0.02) - crossing(0.5)
    # Overshoot is above and undershoot below the level that is reached, whatever the direction.
    for sign, beyond, back, time, factor, low in (("pos", "Overshoot", "Undershoot", "riseTime", 1, 0),
                                                  ("neg", "Undershoot", "Overshoot", "fallTime", -1, 1)):
        rows = [(time, "s", rise / w, "response solved", sample, "a sample"),
                (sign + "SlewRate", "1/s", factor * slew, "0.8 / that time", slew**2 * sample, "a sample"),
                (sign + beyond, "%", over, "100 exp(-pi d / sqrt(1 - d^2))", over * (w * sample)**2, "curvature"),
                (sign + back, "%", under, "3 rise times behind the band", slope, "slope of a sample"),
                (sign + "SettlingTime", "s", settled / w, "last time outside 2 %", sample, "a sample")]
        group("Ringing up" if factor > 0 else "Ringing down", "A step through the system wn = 2 pi 1 kHz, d = 0.3.",
              f"gen:step?rate=1M&at=1m&low={low}&high={1 - low}&frequency=1k&damping=0.3&duration=5m --deck time "
              "--measure bilevel --set settleSeek=3m " + LEVELS,
              [(row[0], "bilevel." + row[0], *row[1:]) for row in rows])


def trigger():
    group("Trigger point", "A straight edge of 10 ms from 0 to 1 at 0.2 s, in seven samples, crosses 0.3 after 3 ms.",
          "gen:pulse?rate=700&period=1&width=0.3&rise=10m&fall=10m&delay=0.2&duration=1 --deck time --frame 7 "
          "--span-time 0.1 --measure trigger --set mode=normal --set autoLevel=false --set level=0.3",
          [("position", "trigger.position", "s", 0.203, "delay + level rise", *ROUND),
           ("level", "trigger.level", "", 0.3, "as told", *EXACT),
           ("updates with a trigger", "trigger.triggered", "", 1, "one edge", *EXACT),
           ("updates", "trigger.updates", "", 20, "20 a second", *EXACT)])


def magnitude_phase():
    path = "message.signals.0.channel."
    rows = [(f"magnitude of sample {k}", f"{path}0.data.{k}", "", 2, "amplitude", *ROUND) for k in (0, 3)]
    rows += [(f"phase of sample {k}", f"{path}1.data.{k}", "degrees", phase, "30 + 45 k, wrapped", 1e-10, "rounding")
             for k, phase in ((0, 30), (3, 165), (4, -150), (7, -15))]
    group("Magnitude and phase", "A complex tone of an eighth of the rate.",
          "gen:tone?rate=1k&frequency=125&amplitude=2&phase=30&complex=true&duration=0.1 --deck time --measure none "
          "--set magPhaseData=true", rows)


# --- spectra ---------------------------------------------------------------------------------------------------------

RATE, BIN = 10240, 10
HANN = {-1: 1 / 6, 0: 2 / 3, 1: 1 / 6}  # parts of a tone's power density in its bin and in the bins beside it
WINDOW = "--deck spectrum --set frequencyResolutionMethod=window-length --set windowLength=1024 "
AVERAGES, RBW = 64, 15
AVERAGED = WINDOW + "--set averagingMethod=running --set spectralAverages=64 "


def scatter_of_band(width):
    """Through a Hann window n bins scatter as 18 / 35 n independent ones: n sum w^4 / (sum w^2)^2 = 35 / 18."""
    return SCATTER * math.sqrt(35 / 18 / (AVERAGES * width / BIN))



def levels():
    power, full = 1 / 2 / 50, 1 / 2 / 2**2
    rows = []
    for kind, units, unit, value, source in [
            ("power", "watts", "W", power, "P = A^2 / 2 R"),
            ("power", "dbw", "dBW", db(power), "10 lg P"),
            ("power", "dbm", "dBm", db(power) + 30, "10 lg P + 30"),
            ("power", "dbfs", "dBFS", db(full), "10 lg A^2 / 2 FS^2"),
            ("power-density", "watts/hz", "W/Hz", power / RBW, "P / RBW"),
            ("power-density", "dbw/hz", "dBW/Hz", db(power / RBW), "10 lg P / RBW"),
            ("power-density", "dbm/hz", "dBm/Hz", db(power / RBW) + 30, "10 lg P / RBW + 30"),
            ("power-density", "dbfs/hz", "dBFS/Hz", db(full / RBW), "10 lg A^2 / 2 FS^2 RBW"),
            ("rms", "vrms", "Vrms", math.sqrt(0.5), "A / sqrt 2"),
            ("rms", "dbv", "dBV", db(0.5), "20 lg A / sqrt 2"),
            ("rms", "dbuv", "dBuV", db(0.5) + 120, "20 lg A / sqrt 2 + 120")]:
        rows.append((f"{kind} in {unit}", "peaks.peaks.0.level", unit, value, source, 1e-12 * abs(value), "rounding",
                     f"--set spectrumType={kind} --set spectrumUnits={units}"))
    group("Levels in each unit", "A tone of amplitude A = 1 in the middle of a bin, R = 50 ohm, full scale FS = 2.",
          f"gen:tone?rate={RATE}&duration=2 --measure peaks --set numPeaks=1 --set referenceLoad=50 "
          "--set autoFullScale=false --set fullScale=2 " + WINDOW, rows)


def spectrum_figures():
    rows = []
    for window, a in [("rectangular", [1]), ("hann", [0.5, 0.5]), ("hamming", [0.54, 0.46]),
                      ("blackman-harris", [0.35875, 0.48829, 0.14128, 0.01168]),
                      ("flat-top", [0.21557895, 0.41663158, 0.277263158, 0.083578947, 0.006947368])]:
        enbw = 1 + sum(c**2 for c in a[1:]) / 2 / a[0]**2
        choice = "--set window=" + window
        rows.append((f"ENBW, {window}", "enbw", "bins", enbw, "1 + sum a_i^2 / 2 a_0^2", *ROUND, choice))
        rows.append((f"RBW, {window}", "rbw", "Hz", enbw * BIN, "ENBW bin", *FINE, choice))
    by_rbw = "--set frequencyResolutionMethod=rbw --set rbw=20"
    floor = 0.01 * RBW / (RATE / 2) * (1 - 1 / (3 * AVERAGES))
    rows += [("first bin", "start", "Hz", 0, "one-sided", *EXACT),
             ("last bin", "stop", "Hz", RATE / 2, "rate / 2", *EXACT),
             ("span", "span", "Hz", RATE / 2, "rate / 2", *EXACT),
             ("segment length", "segmentLength", "", 1024, "as told", *EXACT),
             ("FFT length", "fftLength", "", 1024, "segment length", *EXACT),
             ("segment length, RBW of 20 Hz", "segmentLength", "", 768, "ENBW rate / RBW", *EXACT, by_rbw),
             ("FFT length, RBW of 20 Hz", "fftLength", "", 1024, "1024 at least", *EXACT, by_rbw),
             ("averages", "averages", "", AVERAGES, "K", *EXACT),
             ("averages, g = 3/4", "averages", "", 7, "2 / (1 - g) - 1", *EXACT,
              "--set averagingMethod=exponential --set forgettingFactor=0.75"),
             ("VBW", "vbw", "Hz", 2 / (AVERAGES - 1) * BIN / (2 * PI), "(1 - g) bin / 2 pi g, g = (K - 1) / (K + 1)",
              *ROUND),
             ("noise floor", "noiseFloors.0.level", "dBm", db(floor) + 30, "s^2 RBW / (rate / 2), median of K",
              1.25 * scatter_of_band(RATE / 2), "scatter of a median")]
    group("Resolution, span and noise floor", "White noise of s = 0.1 rms, K = 64 averages, windows of 1024 samples.",
          f"gen:noise?rate={RATE}&rms=0.1&duration=12.8 --measure none " + AVERAGED, rows)
    path = "message.spectrum.timeIncrement"
    group("Spectrogram", "A line each window, or as many windows as the resolution T asked for holds 1 / RBW.",
          f"gen:noise?rate={RATE}&duration=2 --measure none --set showSpectrogram=true " + WINDOW,
          [("time increment", path, "s", 0.1, "1024 / rate", *ROUND),
           ("time increment, T", path, "s", 0.25 * RBW * 0.1, "T RBW 1024 / rate", *ROUND,
            "--set autoTimeResolution=false --set timeResolution=0.25")])


def spectrum_peaks():
    rows = [("number of peaks", "peaks.count", "", 3, "tones", *EXACT)]
    for i, (frequency, amplitude) in enumerate([(1000, 1), (2500, 0.3), (4000, 0.1)]):
        path = f"peaks.peaks.{i}."
        rows.append((f"frequency of peak {i + 1}", path + "frequency", "Hz", frequency, "tone", *EXACT))
        rows.append((f"peak {i + 1}", path + "level", "dBm", dbm(amplitude), "A^2 / 2", *FINE))
    group("Peaks of a spectrum", "Tones in the middle of their bins.",
          f"gen:multitone?rate={RATE}&frequency=1k,2.5k,4k&amplitude=1,0.3,0.1&duration=2 --measure peaks " + WINDOW,
          rows)
    half = math.sin(PI / 2) / (PI / 2) / (1 - 0.5**2)  # the Hann window's transform half a bin off
    path = "peaks.peaks.0.level"
    group("A tone between two bins", "Half a bin off the middle the level is low by the window's scalloping loss.",
          f"gen:tone?rate={RATE}&frequency=1005&duration=2 --measure peaks --set numPeaks=1 " + WINDOW,
          [("level", path, "dBm", dbm(half), "A sinc(1/2) / (1 - 1/4)", 1e-4, "image at -1005 Hz"),
           ("level, flat-top", path, "dBm", dbm(1), "A^2 / 2", 0.02, "its ripple", "--set window=flat-top")])


BAND = "--measure channel --set measurementChannelStartFrequency=2000 --set measurementChannelStopFrequency=3000 "


def channels():
    power = 0.01 * 1000 / (RATE / 2)
    edge = 4 * 5 / math.sqrt(AVERAGES)  # the power outside is that of 5 Hz of noise, which lie in one bin
    group("Channel power and occupied bandwidth",
          "White noise of s = 0.1 rms over a channel of B = 1 kHz, K = 64 averages.",
          f"gen:noise?rate={RATE}&rms=0.1&duration=12.8 " + BAND + AVERAGED,
          [("channel power", "channel.channelPower", "dBm", db(power) + 30, "s^2 B / (rate / 2)",
            scatter_of_band(1000), "scatter over the band"),
           ("occupied bandwidth", "channel.occupiedBandwidth", "Hz", 990, "99 % of B", edge * math.sqrt(2),
            "scatter of both edges"),
           ("occupied from", "channel.startFrequency", "Hz", 2005, "0.5 % above", edge, "scatter of a bin"),
           ("occupied to", "channel.stopFrequency", "Hz", 2995, "0.5 % below", edge, "scatter of a bin"),
           ("frequency error", "channel.frequencyError", "Hz", 0, "flat", edge, "scatter of both edges")])


def adjacent_channels():
    width = 1000
    main = "channel.channelPower"

    def gaussian(d):
        """Half the power at filterCoeff = 0.5 times the width."""
        return 2**-((d / (0.5 * width))**2)

    def raised_cosine(d):
        """Roll-off 0.5."""
        low, high = width / 2 * 0.5, width / 2 * 1.5
        return 1 if d <= low else 0 if d >= high else math.cos(PI / 2 * (d - low) / (high - low))**2
    rows = []
    for shape, gain, name in (("none", lambda d: 1, "A^2 / A0^2"), ("gaussian", gaussian, "weighed by 2^-(2d/W)^2"),
                              ("rrc", raised_cosine, "weighed by cos^2")):
        def part(distance):
            """A tone stands in three bins, each of which the filter weighs by its distance from the middle."""
            return sum(share * gain(abs(distance + k * BIN)) for k, share in HANN.items())
        choice = f"--set filterShape={shape} --set filterCoeff=0.5"
        rows.append((f"channel power, {shape}", main, "dBm", db(0.5 * part(0)) + 30, name, *FINE, choice))
        for i, (side, amplitude, off) in enumerate([("lower", 0.1, 100), ("upper", 0.05, 100), ("lower", 0.02, 300),
                                                    ("upper", 0.01, 300)]):
            rows.append((f"{side} channel {i // 2 + 1}, {shape}", f"channel.adjacentChannels.{i // 2}.{side}", "dB",
                         db(amplitude**2 * part(off) / part(0)), name, *FINE, choice))
    group("Adjacent channels", "A tone in the middle of the channel of W = 1 kHz; others d = 100 Hz off the middle of "
          "the first adjacent channels and 300 Hz off that of the second.",
          f"gen:multitone?rate={RATE}&frequency=2.5k,1.2k,3.8k,300,4.7k&amplitude=1,0.1,0.05,0.02,0.01&duration=2 "
          + BAND + "--set channelMeasurementsType=acpr --set acprOffsets=1200,1900 --set adjacentBW=800 " + WINDOW,
          rows)


def distortion():
    amplitudes = [1, 1e-2, 3e-3, 1e-3]
    power = [a**2 / 2 for a in amplitudes]
    harmonics, noise = sum(power[1:]), 1e-6
    share, ratio = noise * RBW / (RATE / 2), math.sqrt(harmonics / power[0])

    def scatter(tone):
        """Noise beside a tone scatters its level by 8.7 dB sqrt(noise in the bin / tone) / sqrt(K)."""
        return 4 * 8.69 * math.sqrt(share / tone / AVERAGES) + 1e-9
    beside = scatter(power[1])
    rows = [("THD", "thd", "dB", 2 * db(ratio), "10 lg H / P1", beside, "noise beside harmonics"),
            ("THD", "thdPercent", "%", 100 * ratio, "100 sqrt(H / P1)", 100 * ratio * beside / 8.69, "the same"),
            ("SNR", "snr", "dB", db(power[0] / noise), "10 lg P1 / N", scatter_of_band(RATE / 2) + 0.02,
             "scatter, median"),
            ("SINAD", "sinad", "dB", db(power[0] / (harmonics + noise)), "10 lg P1 / (H + N)",
             beside + 0.02 * scatter_of_band(RATE / 2), "N is 1.8 % of H"),
            ("SFDR", "sfdr", "dB", db(power[0] / power[1]), "10 lg P1 / P2", beside, "noise beside it")]
    for i, tone in enumerate(power):
        rows.append((f"frequency of harmonic {i + 1}", f"tones.{i}.frequency", "Hz", 1000 * (i + 1), "tone", *EXACT))
        rows.append((f"harmonic {i + 1}", f"tones.{i}.level", "dBm", db(tone) + 30, "A^2 / 2",
                     scatter(tone) + 4.343 * share / tone, "noise in its bin"))
    group("Harmonic distortion", "A tone with three harmonics in white noise of 1 mV rms, K = 64 averages.",
          f"gen:multitone?rate={RATE}&frequency=1k,2k,3k,4k&amplitude=1,0.01,0.003,0.001&noise=1m&duration=12.8 "
          "--measure distortion --set numHarmonics=4 " + AVERAGED,
          [(row[0], "distortion." + row[1], *row[2:]) for row in rows])


def intercept():
    level = dbm(0.5)
    rows = [("TOI", "distortion.toi", "dBm", level + 30, "level + 60 dB / 2", *FINE)]
    for i, (name, frequency, value) in enumerate([("f1", 2000, level), ("f2", 2200, level),
                                                  ("2 f1 - f2", 1800, level - 60), ("2 f2 - f1", 2400, level - 60)]):
        path = f"distortion.tones.{i}."
        rows.append((f"frequency {name}", path + "frequency", "Hz", frequency, "tone", *EXACT))
        rows.append((f"level at {name}", path + "level", "dBm", value, "A^2 / 2 or 60 dB below", *FINE))
    group("Third-order intercept", "Two tones of amplitude 0.5 with products 60 dB below them.",
          f"gen:twotone?rate={RATE}&frequency=2k&spacing=200&im3=-60&duration=2 --measure distortion "
          "--set distortionType=intermodulation " + WINDOW, rows)


def phase_noise():
    # A bin of K averages, and less than 0.2 dB of aliases and of the skirt of the negative carrier.
    rows = [(f"at {spot} Hz", f"phaseNoise.spots.{i}.level", "dBc/Hz", -80 - 20 * math.log10(spot / 1000),
             "20 dB a decade", SCATTER / math.sqrt(200) + 0.2, "scatter of a bin, aliases")
            for i, spot in enumerate((300, 1000, 3000))]
    group("Phase noise", "A carrier of 12 kHz with -80 dBc/Hz at 1 kHz, K = 200 averages.",
          "gen:phasenoise?frequency=12k&level=-80&at=1k&duration=28 --deck spectrum --measure phasenoise --set "
          "phaseNoiseFrequencyOffset=300,1000,3000 --set averagingMethod=running --set spectralAverages=200", rows)


def masks():
    lines = "0,900,900,1100,1100,5120,-60,-60,0,0,-60,-60"
    for title, note, signal, passes in (
            ("Mask that is kept", "Nothing but a tone inside a step of 60 dB.", "tone?frequency=1k", True),
            ("Mask that is broken", "A second tone stands outside the step.",
             "multitone?frequency=1k,1.2k&amplitude=1,0.1", False)):
        group(title, note + " 20 windows, each a test.",
              f"gen:{signal}&rate={RATE}&duration=2 --measure mask --set enabledMasks=upper --set upperMask={lines} "
              "--set referenceLevel=spectrum-peak " + WINDOW,
              [("passing", "mask.passing", "", passes, "1 for true", *EXACT),
               ("passed tests", "mask.passed", "", 20 * passes, "windows", *EXACT),
               ("tests", "mask.tests", "", 20, "windows", *EXACT),
               ("success rate", "mask.successRate", "%", 100 * passes, "passed / tests", *EXACT),
               ("reference level", "mask.reference", "dBm", dbm(1), "level of the tone", *FINE),
               ("exit status", "status", "", 1 - passes, "1 when a mask fails", *EXACT)])


# --- responses -------------------------------------------------------------------------------------------------------

def two_taps():
    point, at = 22050 / 2047, 1024
    w = PI * at / 2047
    chord = (0.01, "chord between points")

    def solve(level):
        return 44100 / (2 * PI) * math.acos((10**(level / 10) - 0.52) / 0.48)
    gain = db(0.52 + 0.48 * math.cos(w))
    phase = -math.degrees(math.atan2(0.4 * math.sin(w), 0.6 + 0.4 * math.cos(w)))
    rows = [("first frequency", "startFrequency", "Hz", 0, "0", *EXACT),
            ("last frequency", "stopFrequency", "Hz", 22050, "rate / 2", *FINE),
            ("gain at the start", "startGain", "dB", 0, "0.6 + 0.4", *ROUND),
            ("gain at the end", "stopGain", "dB", 2 * db(0.2), "0.6 - 0.4", *FINE),
            ("greatest gain", "greatestGain", "dB", 0, "at 0 Hz", *ROUND),
            ("its frequency", "greatestGainFrequency", "Hz", 0, "0", *EXACT),
            ("passband from", "passbandStart", "Hz", 0, "0", *EXACT),
            ("passband to", "passbandStop", "Hz", solve(-3), "response solved", point, "a point"),
            ("-3 dB", "points3dB.0.frequency", "Hz", solve(-3), "response solved", *chord),
            ("-6 dB", "points6dB.0.frequency", "Hz", solve(-6), "response solved", *chord)]
    rows = [(row[0], "response." + row[1], *row[2:]) for row in rows]
    path = "message.signals.0.channel."
    rows += [(f"frequency of point {at}", f"{path}0.sample.{at}", "Hz", at * point, "1024 / 2047 rate / 2", *FINE),
             (f"gain of point {at}", f"{path}0.data.{at}", "dB", gain, "abs(0.6 + 0.4 exp(-jw))", *FINE),
             (f"phase of point {at}", f"{path}1.data.{at}", "degrees", phase, "its angle", *FINE)]
    group("Filter of two taps", "two.txt holds 0.6 and 0.4, one a line: |H|^2 = 0.52 + 0.48 cos w.",
          "two.txt --deck response --measure none", rows)


def eight_taps():
    def lobes(w):
        return abs(math.sin(4 * w) / (8 * math.sin(w / 2)))
    places = [max((2 * PI * (lobe + i / 1e4) / 8 for i in range(1, 10000)), key=lobes) for lobe in (1, 2, 3)]
    point = (22050 / 2047, "a point")
    formula, top = "sin 4w / 8 sin(w/2)", (1e-4, "curvature")
    rows = [("stopband peak", "response.stopbandPeak", "dB", 2 * db(lobes(places[0])), formula, *top),
            ("its frequency", "response.stopbandPeakFrequency", "Hz", 44100 * places[0] / 2 / PI, "its maximum",
             *point),
            ("number of peaks", "peaks.count", "", 3, "side lobes", *EXACT)]
    for i, place in enumerate(places):
        path = f"peaks.peaks.{i}."
        rows.append((f"side lobe {i + 1}", path + "value", "", 2 * db(lobes(place)), formula, *top))
        rows.append((f"frequency of side lobe {i + 1}", path + "frequency", "Hz", 44100 * place / 2 / PI,
                     "its maximum", *point))
    group("Side lobes of eight equal taps", "eight.txt holds 0.125 in eight lines.", "eight.txt --deck response", rows)


for fill in (statistics, spans, time_peaks, pulses, aberrations, trigger, magnitude_phase, levels, spectrum_figures,
             spectrum_peaks, channels, adjacent_channels, distortion, intercept, phase_noise, masks,
             two_taps, eight_taps):
    fill()

"""Decks that options are tried on, and the frames that they are fed with."""
import math

RATE = 1000


# --- signals and frames ----------------------------------------------------------------------------------------------

def pulses(t):
    """From 0 to 1 every 0.2 s for 80 ms; edges ring at 50 Hz."""
    def ringing(age):
        return 1 - math.exp(-100 * age) * (math.cos(300 * age) + math.sin(300 * age) / 3)
    place = (t + 0.15) % 0.2
    return ringing(place) if place < 0.08 else 1 - ringing(place - 0.08)


def trapezoids(t):
    """Every 0.2 s a pulse of 60 ms with edges of 10 ms, in turn to 1 and to 0.5."""
    place, height = t % 0.2, 1 if t % 0.4 < 0.2 else 0.5
    return height * max(0, min(1, (place - 0.05) / 0.01, (0.12 - place) / 0.01))


def tones(t):
    """Tones of 128 Hz, 256 Hz and 384 Hz, twice as strong in every second frame; and a little of 150 Hz."""
    w = 2 * math.pi * t
    return (1 + math.floor(4 * t) % 2) * (math.cos(128 * w) + 0.1 * math.cos(256 * w) + 0.01 * math.cos(384 * w)
                                          + 0.001 * math.cos(150 * w))


def raw(functions, count, size, rate=RATE):
    """Frames of signals, a function of time for each channel."""
    return [[{"raw": [[f((n * size + i) / rate) for i in range(size)] for f in signal]} for signal in functions]
            for n in range(count)]


def heads(functions, count, size, rate=RATE, first=0):
    """The same as a simulation hands it over: the time of the frame, then the samples of each channel."""
    return [[{"head": [n * size / rate] + [f((n * size + i) / rate) for f in signal for i in range(size)]}
             for signal in functions] for n in range(first, first + count)]


def client(functions, size, rate=RATE, **more):
    return {"signals": [{"channels": len(signal), "sampleTime": 1 / rate, "frameSize": size, "offset": 5 * index}
                        for index, signal in enumerate(functions)], **more}


# --- decks -----------------------------------------------------------------------------------------------------------

TIME = [[pulses, lambda t: 2 * pulses(t)], [lambda t: 3 * (2.5 * t % 1) - 1]]
TRIGGER = [[trapezoids, lambda t: trapezoids(t + 0.1)], [lambda t: trapezoids(t + 0.02)]]
SPECTRUM = [[tones, lambda t: 0.5 * math.cos(2 * math.pi * 64 * t)], [lambda t: 0.25 * math.cos(2 * math.pi * 192 * t)]]
# Lines of a spectrum as another program computes them: 1 Hz apart, dBm.
LEVELS = {100: 20, 200: -20, 300: -30, 110: -40, 120: -50, -100: 10}
LINES = [[{"buffer": [k - 500 for k in range(1001)] + [LEVELS.get(k - 500, -80 + 0.01 * (k % 7)) for k in range(1001)]
           + [LEVELS.get(k - 550, -85) - 5 for k in range(1001)]}]]
TIME_STRATEGY, FRAME_STRATEGY = "dsp_wavedeck_time_data_strategy", "dsp_wavedeck_frame_data_strategy"
SPECTRUM_STRATEGY = "dsp_wavedeck_frequency_data_strategy"
STATISTICS, PEAKS = "signalStatisticsEnabled=true ", "peakFinderEnabled=true "
PULSES = "bilevelMeasurementsEnabled=true showTransitions=true showAberrations=true showCycles=true "
TRIGGERED = "triggerEnabled=true customSpan=0.05 mode=normal"
ESTIMATOR = "sampleRate=1024 frequencyResolutionMethod=window-length windowLength=256 autoFFTLength=false " \
            "fftLength=256 forgettingFactor=0 "
ON_SPECTRA = {
    "frequency_peak_finder_filter": PEAKS + "frequencyLimits=-500,500",
    "channel_measurements_filter": "channelMeasurementsEnabled=true measurementChannelStartFrequency=20 "
                                   "measurementChannelStopFrequency=220",
    "distortion_measurements_filter": "distortionMeasurementsEnabled=true",
    "phase_noise_filter": "phaseNoiseEnabled=true phaseNoiseFrequencyOffset=10,20,50",
    "spectral_mask_tester_filter": "spectralMaskEnabled=true enabledMasks=upper upperMask=0"}
DECKS = {}


def deck(name, facts, chain, frames, **more):
    """more: "strategy"; frames that go on "later", after a tune, where they are not the same again; client steps
    "then", after the setup; and whether the chain has what an "update" needs for its message.
    """
    DECKS[name] = {"client": facts, "chain": chain, "frames": frames, "strategy": TIME_STRATEGY, "update": True} | more


def variant(name, of, **changes):
    DECKS[name] = DECKS[of] | changes


deck("time", client(TIME, 100, displaySpan=1), {
    "simulation_meta_data_filter": "", "magnitude_phase_filter": "", "dsp_wavedeck_measurements_data_cache_filter": "",
    "time_signal_statistics_filter": STATISTICS, "time_peak_finder_filter": PEAKS,
    "bilevel_measurements_filter": PULSES}, raw(TIME, 10, 100))
variant("time in one frame", "time", frames=raw(TIME, 1, 1000))
variant("time replayed", "time", then=[{"source": "repository"}], update=False, chain={
    name: text for name, text in DECKS["time"]["chain"].items() if name != "magnitude_phase_filter"})
deck("trigger", client(TRIGGER, 100, displaySpan=0.05), {"magnitude_phase_filter": "", "trigger_filter": TRIGGERED},
     raw(TRIGGER, 10, 100))
variant("trigger in one frame", "trigger", frames=raw(TRIGGER, 1, 1000))
variant("trigger as it came", "trigger", chain={"trigger_filter": TRIGGERED}, update=False)
deck("frame", client(TIME, 1000), {
    "simulation_meta_data_filter": "", "magnitude_phase_filter": "", "signal_statistics_filter": STATISTICS,
    "peak_finder_filter": PEAKS}, raw(TIME, 1, 1000), strategy=FRAME_STRATEGY)
variant("frame as it came", "frame", update=False,
        chain={"signal_statistics_filter": STATISTICS, "peak_finder_filter": PEAKS})
deck("response", client([[abs]], 8), {
    "simulation_meta_data_filter": "", "digital_filter_frequency_response_filter": "",
    "magnitude_phase_response_filter": "", "peak_finder_filter": PEAKS}, [[{"raw": [[1, 0.5, 0.25, 0, 0.5, 0, 0, 1]]}]],
     strategy="magnitude_phase_response_data_strategy")

deck("spectrum", client(SPECTRUM, 256, 1024), {
    "simulation_meta_data_filter": "", "spectrum_estimator_filter": ESTIMATOR, "spectrum_thinner_filter": "",
    **ON_SPECTRA}, raw(SPECTRUM, 4, 256, 1024), strategy=SPECTRUM_STRATEGY)
GAPS = raw(SPECTRUM, 4, 256, 1024)
GAPS[2][0]["raw"][0][100] = "nan"
variant("spectrum with gaps", "spectrum", frames=GAPS)
variant("spectrum with hold traces", "spectrum", chain=DECKS["spectrum"]["chain"] | {
    "spectrum_estimator_filter": ESTIMATOR + "plotMaxHoldTrace=true plotMinHoldTrace=true"})
deck("lines", {"signals": [{"channels": 2, "frameSize": 1001, "sampleTime": 1e-3}],
               "board": {"spectrumLength": {"unsigned": 1001}}}, ON_SPECTRA, LINES, strategy=SPECTRUM_STRATEGY)

AXES = {"displaySpan": 1, "axes": {"0": {"startTime": 0, "timeSpan": 1}}}
deck("simulation", client(TIME, 100, **AXES), {
    "bf_simulation_meta_data_filter": "", "bf_simulation_pacer_filter": "", "magnitude_phase_filter": "",
    "bf_wavedeck_measurements_data_cache_filter": "",
    "bf_time_signal_statistics_filter": STATISTICS + "customSpan=1",
    "bf_time_peak_finder_filter": PEAKS + "customSpan=1",
    "bf_bilevel_measurements_filter": PULSES + "customSpan=1"}, heads(TIME, 10, 100), later=heads(TIME, 10, 100,
                                                            first=10))
variant("simulation in one frame", "simulation", client=client(TIME, 1000, **AXES), frames=heads(TIME, 1, 1000))
variant("simulation in an application", "simulation",
        chain={"bf_app_simulation_meta_data_filter": "", "magnitude_phase_filter": ""})
variant("simulation without times", "simulation", client=client(TIME, 100, **AXES, timeBased=False, simulationTime=70))
deck("simulation with trigger", client(TRIGGER, 100, displaySpan=0.05), {
    "bf_simulation_meta_data_filter": "", "magnitude_phase_filter": "", "bf_trigger_filter": TRIGGERED},
     heads(TRIGGER, 10, 100), later=heads(TRIGGER, 10, 100, first=10))
variant("simulation with trigger as it came", "simulation with trigger", chain={"bf_trigger_filter": TRIGGERED},
        update=False)
variant("simulation of steps with trigger", "simulation with trigger", client={
    "signals": [{"channels": channels, "sampleTime": 0, "frameSize": 100} for channels in (2, 1)],
    "displaySpan": 0.05, "simulationTime": 0.07})
deck("simulation of spectra", client(SPECTRUM, 256, 1024), {
    "bf_simulation_meta_data_filter": "", "bf_input_port_parameters_handler_filter": "",
    "bf_spectrum_estimator_filter": ESTIMATOR, "bf_spectrum_data_aggregator_filter": ""}, heads(SPECTRUM, 4, 256, 1024),
     later=heads(SPECTRUM, 4, 256, 1024, first=4), strategy="bf_" + SPECTRUM_STRATEGY)
GAPS = heads(SPECTRUM, 4, 256, 1024)
GAPS[2][0]["head"][100] = "nan"
variant("simulation of spectra with gaps", "simulation of spectra", frames=GAPS)
TO_PORT = [[frame[1], {"head": [n / 4, 16]}] for n, frame in enumerate(heads(SPECTRUM, 8, 256, 1024))]
deck("port", {"signals": [{"channels": 1, "sampleTime": 1 / 1024, "frameSize": 256},
                          {"channels": 1, "sampleTime": 0.25, "frameSize": 1, "inputPort": True}]},
     {"bf_input_port_parameters_handler_filter": ""}, TO_PORT[:4], later=TO_PORT[4:], update=False,
     strategy="bf_" + SPECTRUM_STRATEGY)
for port in ("inputPortFrequencyVector", "inputPortRBW", "inputPortVBW"):
    variant("port for " + port, "port", chain={"bf_input_port_parameters_handler_filter": port + "=true",
                                               "bf_spectrum_estimator_filter": ESTIMATOR})

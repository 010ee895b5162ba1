"""What each option changes in what comes out of a deck (decks.py)."""

QUERIES = ["getSpectrumDataImpl", "getSpectralMaskStatusImpl", "getPeakFinderDataImpl"]
WATCHED = ["signalStats", "peakFinder", "bilevelMeasurements", "trigger", "channel", "distortion", "phaseNoise",
           "spectralMask", "spectrumEstimatorMetaData", "thinnedSpectrumLength", "simTime", "simDriftRate",
           "measurementSignal", "measurementChannel", "magPhaseData", "autoSpan", "customSpan", "rbw", "vbw",
           "frequencyVector"]
# What a field's first word stands for.
ESTIMATOR = "board.spectrumEstimatorMetaData"
ALIASES = {"stats": "board.signalStats", "peaks": "board.peakFinder", "bilevel": "board.bilevelMeasurements",
           "trigger": "board.trigger.-1", "channel": "board.channel", "distortion": "board.distortion",
           "phaseNoise": "board.phaseNoise", "mask": "board.spectralMask", "estimator": ESTIMATOR,
           "levels": ESTIMATOR + ".spectrumData.0", "frequencies": ESTIMATOR + ".frequencyVector"}
ROWS = []  # (deck, stage, option, value or values, other options given, field, effect or None with the reason in field)


def rows(deck, stages, table, given=""):
    """A table of (option, value, field, effect[, options given]) for each of some stages."""
    for stage in stages.split():
        for option, value, field, effect, *more in table:
            ROWS.append((deck, stage, option, value, " ".join([given, *more]).strip(), field, effect))


def without_effect(deck, stages, options, reason):
    rows(deck, stages, [(*option.split("="), reason, None) for option in options.split()])


# --- time ------------------------------------------------------------------------------------------------------------

def statistics(deck, stage):
    figures = {"showMax": "yMax", "showMin": "yMin", "showPeakToPeak": "peakToPeak", "showMean": "mean",
               "showVariance": "variance", "showStandardDeviation": "standardDeviation", "showMedian": "median",
               "showRMS": "rms", "showMeanSquare": "meanSquare"}
    rows(deck, stage, [(option, "true", "stats." + figure, "was == 0 and now != 0")
                       for option, figure in figures.items()], " ".join(option + "=false" for option in figures))
    rows(deck, stage, [("signalStatisticsEnabled", "false", "message.measurements.stats", "now is None")])


def peak_finder(deck, stage, height):
    rows(deck, stage, [
        ("numPeaks", "1", "peaks.peaks", "len(was) == 3 and now == was[:1]"),
        ("minHeight", str(height), "peaks.numPeaks", "now == 0"),
        ("minDistance", "500", "peaks.numPeaks", "was == 3 and now < 3"),
        ("threshold", "1000", "peaks.numPeaks", "now == 0"),
        ("peakFinderEnabled", "false", "message.measurements.peaks", "now is None")])


def bilevel(deck, stage):
    levels = "autoStateLevel=false "
    rows(deck, stage, [
        ("autoStateLevel", "false", "bilevel.highStateLevel", "close(now, 2.3) and close(was, 1) is False"),
        ("highStateLevel", "1.5", "bilevel.amplitude", "close(was, 2.3) and close(now, 1.5)", levels),
        ("lowStateLevel", "0.5", "bilevel.amplitude", "close(was, 2.3) and close(now, 1.8)", levels),
        ("stateLevelTolerance", "20", "bilevel.posSettlingTime", "now != was"),
        ("upperReferenceLevel", "80", "bilevel.riseTime", "now < was"),
        ("midReferenceLevel", "75", "bilevel.posWidth", "now < was"),
        ("lowerReferenceLevel", "20", "bilevel.riseTime", "now < was"),
        ("settleSeek", "0.05", "bilevel.posSettlingTime", "was == 'nan' and now > 0"),
        ("showTransitions", "false", "bilevel.riseTime", "now == 'nan'"),
        ("showAberrations", "false", "bilevel.posOvershoot", "now == 'nan'"),
        ("showCycles", "false", "bilevel.period", "close(was, 0.2) and now == 'nan'"),
        ("bilevelMeasurementsEnabled", "false", "message.measurements.bilevel", "now is None")])


statistics("time", "time_signal_statistics_filter")
peak_finder("time", "time_peak_finder_filter", 10)
bilevel("time", "bilevel_measurements_filter")
statistics("frame", "signal_statistics_filter")
peak_finder("frame", "peak_finder_filter", 10)

# Which signal and channel: the second channel is twice the first, the second signal another one, 5 s later.
rows("time", "dsp_wavedeck_measurements_data_cache_filter", [
    ("measurementSignal", "1", "stats.yMax", "close(now, 1.9925)"),
    ("measurementChannel", "1", "stats.yMax", "now > 1.9 * was"),
    ("magPhaseData", "true,false", "stats.mean", "now != was")])
rows("time", "time_signal_statistics_filter", [("measurementSignal", "1", "stats.xMax", "close(now, was + 5)")])
rows("time", "time_peak_finder_filter", [("measurementSignal", "1", "peaks.peaks.0.location", "close(now, was + 5)")])
rows("time", "bilevel_measurements_filter", [("measurementSignal", "1", "board.measurementSignal", "now == 1")])
for stage, strength, field in (("time_signal_statistics_filter", "stats.mean", "stats"),
                               ("time_peak_finder_filter", "peaks.peaks.0.value", "peaks"),
                               ("bilevel_measurements_filter", "bilevel.amplitude", "bilevel")):
    rows("time replayed", stage, [("measurementChannel", "1", strength, "close(now, 2 * was)"),
                                  ("magPhaseData", "true,false", field, "now != was")])
# The span of the first frame after a setup, 1 s if it is automatic.
SHORT = "customSpan=0.3 "
rows("time in one frame", "time_signal_statistics_filter", [
    ("customSpan@setup", "0.3", "stats.xMin", "close(was, 0.999) and 0.698 < now < 0.9"),
    ("autoSpan@setup", "true", "stats.xMin", "now < 0.69 < was", SHORT)])
rows("time in one frame", "time_peak_finder_filter", [
    ("customSpan@setup", "0.3", "peaks.numPeaks", "was == 0 and now == 3"),
    ("autoSpan@setup", "true", "peaks.numPeaks", "now > was", SHORT + "numPeaks=100")])
rows("time in one frame", "bilevel_measurements_filter", [
    ("customSpan@setup", "0.3", "bilevel.posPulses", "was == 'nan' and now == 1"),
    ("autoSpan@setup", "true", "bilevel.posPulses", "was == 1 and now == 5", SHORT)])

rows("frame", "signal_statistics_filter", [("measurementSignal", "1", "stats.yMax", "close(now, 1.9925)"),
                                           ("measurementChannel", "1", "stats.mean", "close(now, 2 * was)")])
rows("frame", "peak_finder_filter", [("measurementSignal", "1", "peaks.peaks.0.value", "close(now, 1.9925)"),
                                     ("measurementChannel", "1", "peaks.peaks.0.value", "now > 1.9 * was")])
rows("frame as it came", "signal_statistics_filter", [("magPhaseData", "true,false", "stats.mean", "now != was")])
rows("frame as it came", "peak_finder_filter", [("magPhaseData", "true,false", "peaks.peaks", "now != was")])
without_effect("frame", "signal_statistics_filter peak_finder_filter", "autoSpan=true customSpan=0.5",
               "a frame is measured whole")
rows("frame", "magnitude_phase_filter", [
    ("magPhaseData", "true,false", "message.signals.0.numChannels", "was == 2 and now == 4"),
    ("autoSpan", "true", "board.autoSpan", "now is True"), ("customSpan", "2", "board.customSpan", "now == 2")])
rows("response", "magnitude_phase_response_filter", [
    ("magnitudeDisplay", "Magnitude", "peaks.peaks.0.value", "close(now, 10 ** (was / 20))"),
    ("magnitudeDisplay", "Magnitude squared", "peaks.peaks.0.value", "close(now, 10 ** (was / 10))"),
    ("magPhaseData", "false", "board.magPhaseData", "now == [False]"),
    ("autoSpan", "true", "board.autoSpan", "now is True"), ("customSpan", "2", "board.customSpan", "now == 2")])
INDICES = "measurementSignal=1 measurementChannel=1"
NO_INDEX = "the stage takes all signals and channels"
without_effect("response", "simulation_meta_data_filter digital_filter_frequency_response_filter", INDICES, NO_INDEX)

# --- trigger ---------------------------------------------------------------------------------------------------------

def trigger(deck, stage):
    level = "autoLevel=false level=0.25 "
    two = "lowLevel=0.2 highLevel=0.8 "
    rows(deck, stage, [
        ("mode", "auto", "trigger", "was is None and now is not None", "autoLevel=false level=9"),
        ("mode", "once", "board.trigger", "len(was) == 5 and len(now) == 1"),
        ("mode", "off", "message.measurements.trigger.triggerFound", "was is True and now is False"),
        ("rearm@setup", "false mode=once", "board.trigger", "len(was) == 1 and now == []", "mode=once"),
        ("position", "25", "trigger.startTime", "close(now, was + 0.0125)"),
        ("type", "pulse-width | transition | runt | window | timeout", "trigger.position", "True",
         two + "timeout=0.03"),
        ("minDuration", "0.1 type=runt", "trigger", "was is not None and now is None", "type=runt " + two),
        ("maxDuration", "0.01 type=runt", "trigger", "was is not None and now is None", "type=runt " + two),
        ("minPulseWidth", "0.1 type=pulse-width", "trigger", "was is not None and now is None", "type=pulse-width"),
        ("maxPulseWidth", "0.01 type=pulse-width", "trigger", "was is not None and now is None", "type=pulse-width"),
        ("polarity", "falling", "board.trigger", "now != was"),
        ("polarity", "either", "board.trigger", "now != was"),
        ("polarity", "negative", "trigger.position", "now != was", "type=pulse-width polarity=positive"),
        ("polarity", "fall-time", "trigger.position", "now > was", "type=transition polarity=rise-time " + two),
        ("polarity", "outside", "trigger.position", "now > was", "type=window polarity=inside " + two),
        ("hysteresis", "0.3", "board.trigger", "len(was) == 5 and len(now) < 2"),
        ("highLevel", "0.8", "trigger.highLevel", "now == 0.8", "type=transition lowLevel=0.2"),
        ("lowLevel", "0.2", "trigger.lowLevel", "now == 0.2", "type=transition highLevel=0.8"),
        ("timeout", "0.03", "trigger.position", "close(now, was + 0.03)", "type=timeout"),
        ("delay", "0.02", "trigger.position", "close(now, was + 0.02)"),
        ("holdoff", "0.5", "board.trigger", "len(now) < len(was)"),
        ("triggerEnabled", "false", "message.measurements.trigger", "was is not None and now is None"),
        ("triggerChannel", "1", "trigger.position", "abs(now - was - 0.1) < 0.003"),
        ("triggerSignal", "1", "trigger.position", "close(now, was - 0.02)"),
], level)
    rows(deck + " as it came", stage, [("magPhaseData", "true,false", "trigger.position", "now != was")], level)
    rows(deck, stage, [
        ("autoLevel", "false", "trigger.level", "was != now == 0.25", "level=0.25"),
        ("level", "0.75", "trigger.level", "now == 0.75", "autoLevel=false")])


trigger("trigger", "trigger_filter")
SPANNED = "close(now['endTime'] - now['startTime'], %s)"
rows("trigger in one frame", "trigger_filter", [
    ("customSpan@setup", "0.2", "trigger", SPANNED % 0.2), ("autoSpan@setup", "true", "trigger", SPANNED % 0.999)],
     "mode=auto autoLevel=false level=9")

# --- spectrum --------------------------------------------------------------------------------------------------------

def estimator(deck, stage):
    by_rbw, bank = "frequencyResolutionMethod=rbw ", "method=filter-bank frequencyResolutionMethod=num-frequency-bands "
    lines, full = "inputDomain=frequency ", "spectrumUnits=dbfs "
    louder = "close(max(was) - max(now), %s)"
    rows(deck, stage, [
        ("inputDomain", "frequency", "levels", "max(now) < 5 < max(was)"),
        ("spectrumType", "power-density", "levels", louder % "10 * log10(1.5 * 4)"),
        ("spectrumType", "rms", "levels", "max(now) > max(was)", "spectrumType=power-density"),
        ("showSpectrum@setup", "false", "estimator.maxHoldTrace", "set(now) == {'-inf'}", "plotMaxHoldTrace=true"),
        ("showSpectrogram", "true", "message.signals.0.channel.0.data", "now != was"),
        ("sampleRate", "2048", "frequencies.0", "close(now, 2 * was)"),
        ("frequencyOffset", "100,0,0", "message.signals.0.channel.0.frequencyOffset", "was == 0 and now == 100"),
        ("method", "filter-bank", "levels", "now != was"),
        ("frequencyRange", "one-sided", "frequencies.0", "was == -508 and now == 0"),
        ("frequencyRange", "two-sided", "frequencies.0", "was == -508 and now == 0"),
        ("defaultSegmentLength", "512", "estimator.rbw", "close(now, 2 * was)", by_rbw),
        ("maxSegmentLength", "100", "estimator.segmentLength", "was == 256 and now == 100",
         "enableMaxSegmentLengthThreshold=true"),
        ("frequencyResolutionMethod", "rbw | num-frequency-bands", "estimator.fftLength", "True",
         "autoFFTLength=true windowLength=2000"),
        ("autoRBW", "false", "estimator.rbw", "was < 2 and abs(now - 10) < 0.1", by_rbw),
        ("windowInvariantSamplesPerUpdate", "true", "estimator.segmentLength", "now != was",
         by_rbw + "window=flat-top"),
        ("rbw", "20", "estimator.rbw", "abs(now - 20) < 0.1", by_rbw + "autoRBW=false"),
        ("autoFFTLength", "true", "estimator.fftLength", "was == 256 and now == 1024"),
        ("fftLength", "512", "estimator.fftLength", "was == 256 and now == 512"),
        ("autoFrequencyVector", "false frequencyVector=5,7", "frequencies", "now[:2] == [5, 7]", lines),
        ("frequencyVector", "5,7", "frequencies", "now[:2] == [5, 7]", lines + "autoFrequencyVector=false"),
        ("numTapsPerBand", "4", "levels", "now != was", bank + "fftLength=16"),
        ("windowLength", "128", "estimator.segmentLength", "was == 256 and now == 128"),
        ("frequencySpan", "span-and-center-frequency | start-and-stop-frequencies", "estimator.rbw", "True",
         by_rbw + "span=200 centerFrequency=100 startFrequency=-50 stopFrequency=50"),
        ("span", "400", "frequencies.0", "now < was - 90", by_rbw + "frequencySpan=span-and-center-frequency span=200"),
        ("centerFrequency", "100", "frequencies.0", "was > -200 and now == -508",
         by_rbw + "frequencySpan=span-and-center-frequency span=200"),
        ("startFrequency", "-200", "frequencies.0", "now < was - 90",
         by_rbw + "frequencySpan=start-and-stop-frequencies startFrequency=-100 stopFrequency=100"),
        ("stopFrequency", "200", "frequencies.-1", "now > was + 90",
         by_rbw + "frequencySpan=start-and-stop-frequencies startFrequency=-100 stopFrequency=100"),
        ("overlapPercent", "50", "estimator.numSamplesPerUpdate", "was == 256 and now == 128"),
        ("window", "blackman-harris | chebyshev | flat-top | hamming | kaiser | rectangular | custom",
         "estimator.enbw", "close(was, 1.5)", "windowLength=8 customWindow=1,2,3,4,4,3,2,1"),
        ("customWindow", "1,1,1,1,1,1,1,1", "estimator.enbw", "close(now, 1)",
         "window=custom windowLength=8 customWindow=1,2,3,4,4,3,2,1"),
        ("sidelobeAttenuation", "90", "estimator.enbw", "now > was", "window=chebyshev"),
        ("averagingMethod", "vbw | running", "levels", "True", "forgettingFactor=0.5 spectralAverages=4"),
        ("forgettingFactor", "0.5", "levels", "max(now) < max(was)"),
        ("autoVBW", "false", "estimator.vbw", "now != was", "averagingMethod=vbw vbw=0.1"),
        ("vbw", "0.2", "estimator.vbw", "close(now, 0.2)", "averagingMethod=vbw autoVBW=false vbw=0.1"),
        ("spectralAverages", "2", "levels", "max(now) < max(was)", "averagingMethod=running"),
        ("spectrumUnits", "watts | dbw | dbfs | vrms | dbv | dbuv", "levels", "True",
         "referenceLoad=2 autoFullScale=false fullScale=8"),
        ("spectrumUnits", "watts/hz | dbw/hz | dbfs/hz", "levels", "True",
         "spectrumType=power-density spectrumUnits=dbm/hz autoFullScale=false fullScale=8"),
        ("spectrumUnits", "auto", "levels", "close(max(now), 10 ** (max(was) / 10 - 3))"),
        ("spectrumUnits", "none", "levels", "close(max(now), 10 ** (max(was) / 10 - 3))"),
        ("inputUnits", "watts | dbw | vrms | dbv | dbuv", "levels", "True", lines + "referenceLoad=2"),
        ("referenceLoad", "2", "levels", louder % "10 * log10(2)"),
        ("autoFullScale", "false", "levels", "max(now) < max(was)", full + "fullScale=4"),
        ("fullScale", "4", "levels", louder % "20 * log10(4)", full + "autoFullScale=false"),
        ("plotMaxHoldTrace", "true", "estimator.maxHoldTrace", "was == [] and len(now) == 768"),
        ("plotMinHoldTrace", "true", "estimator.minHoldTrace", "was == [] and len(now) == 768"),
        ("autoTimeSpan", "false", "estimator.numSpectrogramLines", "was == 100 and now != 100",
         "showSpectrogram=true timeSpan=20"),
        ("timeSpan", "20", "estimator.numSpectrogramLines", "now != was", "showSpectrogram=true autoTimeSpan=false"),
        ("autoTimeResolution", "false", "estimator.timeResolution", "close(now, 2)",
         "showSpectrogram=true timeResolution=2"),
        ("timeResolution", "2", "estimator.timeResolution", "close(now, 2)",
         "showSpectrogram=true autoTimeResolution=false"),
        ("spectrogramChannel", "1", "estimator.spectrogramChannel", "now == 1", "showSpectrogram=true"),
        ("inputRange", "4,4", "levels", louder % "20 * log10(4)", full + "inputDataType=int16,int16"),
        ("allowTransientAveraging", "false", "levels", "now != was", "forgettingFactor=0.9"),
        ("useWelchForFilterBankTransient", "true", "levels", "now != was", bank),
        ("enableMaxSegmentLengthThreshold@setup", "true", "estimator.segmentLength", "was == 256 and now == 100",
         "maxSegmentLength=100"),
        ("enableDesiredSegmentLengthThreshold", "false", "levels", "now != was", "windowLength=5000"),
    ])
    without_effect(deck, stage, INDICES, NO_INDEX)
    rows("tests/spectrum/calculation/SpectrumEstimatorFilterBankTest.cpp", stage, [
        ("useHalideForFIRPolyphaseAnalysis", "false", "ToneReadsWhatThePrototypePredicts",
         "other kernels, the same level to rounding")])


estimator("spectrum", "spectrum_estimator_filter")
rows("spectrum with gaps", "spectrum_estimator_filter", [
    ("useNaNsInCalculatingAverages", "true", "message.signals.0.channel.0.NaNIdx", "was == [] and len(now) == 256")],
     "forgettingFactor=0.9")
rows("spectrum", "spectrum_thinner_filter", [
    ("numPoints", "100", "board.thinnedSpectrumLength.0", "was == 256 and 0 < now <= 100")])
without_effect("spectrum", "spectrum_estimator_filter", "inputDataType=int16,int16",
               "`inputRange` holds the full scale; in a simulation the type tells whether it is measured")

# --- measurements on spectra -----------------------------------------------------------------------------------------

peak_finder("spectrum", "frequency_peak_finder_filter", 50)
rows("lines", "frequency_peak_finder_filter", [
    ("measurementChannel", "1", "peaks.peaks.0.location", "was == 100 and now == 150"),
    ("measurementChannelFrequencyOffset", "7", "peaks.peaks.0.location", "was == 100 and now == 107"),
    ("frequencyLimits", "150,500", "peaks.peaks.0.location", "was == 100 and now == 200")])
without_effect("lines", "frequency_peak_finder_filter", "magPhaseData=true autoSpan=true customSpan=0.5",
               "marks and spans belong to displays of time")
CARRIER = "measurementChannelStartFrequency=90 measurementChannelStopFrequency=110 adjacentBW=20 acprOffsets=20,100"
rows("lines", "channel_measurements_filter", [
    ("measurementChannel", "1", "channel.channelPower", "now < was"),
    ("channelMeasurementsType", "acpr", "channel.acprUpper.0", "was == 'nan' and now != 'nan'", CARRIER),
    ("spectrumType", "power-density", "channel.channelPower", "close(now, was + 10 * log10(9.7656))"),
    ("spectrumType", "rms", "channel.channelPower", "now != was"),
    ("spectrumUnits", "watts", "channel.channelPower", "now != was"),
    ("measurementChannelRBW", "97.656", "channel.channelPower", "close(now, was - 10)"),
    ("measurementChannelStartFrequency", "150", "channel.channelPower", "now < was - 30"),
    ("measurementChannelStopFrequency", "90", "channel.channelPower", "now < was - 30"),
    ("measurementChannelFrequencyOffset", "150", "channel.channelPower", "now < was - 9"),
    ("percentOccupiedBW", "50", "channel.occupiedBW", "now < was"),
])
rows("lines", "channel_measurements_filter", [
    ("numOffsets", "1", "channel.numOffsets", "was == 2 and now == 1"),
    ("adjacentBW", "50", "channel.acprUpper.0", "now > was"),
    ("filterShape", "gaussian | rrc", "channel.acprUpper.0", "True"),
    ("filterCoeff", "0.9", "channel.acprUpper.0", "now != was", "filterShape=rrc"),
    ("acprOffsets", "100,20", "channel.acprUpper", "now == was[::-1]"),
], "channelMeasurementsType=acpr " + CARRIER)
rows("lines", "distortion_measurements_filter", [
    ("measurementChannel", "1", "distortion.harmonicFrequency.0", "was == 100 and now == 150"),
    ("spectrumType", "rms", "distortion.thd", "now != was"),
    ("spectrumUnits", "watts", "distortion.thd", "now != was"),
    ("measurementChannelRBW", "97.656", "distortion", "now != was"),
    ("measurementChannelFrequencyOffset", "7", "distortion.harmonicFrequency.0", "was == 100 and now == 107"),
    ("distortionType", "intermodulation", "distortion.toi", "was == 0 and now != 0"),
    ("numHarmonics", "2", "distortion.harmonicPower", "now == was[:2]"),
    ("twoSidedSpectrum", "false", "distortion", "now != was"),
])
SPOT = "phaseNoise.spotPhaseNoise.0.0.0"
rows("lines", "phase_noise_filter", [
    ("phaseNoiseFrequencyOffset", "20,30,50", SPOT, "now < was - 9"),
    ("measurementChannelRBW", "97.656", SPOT, "close(now, was - 10)"),
])
without_effect("lines", "phase_noise_filter", "spectrumType=rms spectrumUnits=watts twoSidedSpectrum=false "
               "measurementChannelFrequencyOffset=7", "levels and offsets are told from the carrier")
without_effect("lines", "phase_noise_filter", INDICES, "curves of all signals and channels are measured")
without_effect("lines", "phase_noise_filter", "normalTraceData=false maxHoldTraceData=true minHoldTraceData=true",
               "the spectrum itself is always measured")
MASK = "mask.isCurrentlyPassing"
PASSES, FAILS = "was is False and now is True", "was is True and now is False"
rows("lines", "spectral_mask_tester_filter", [
    ("enabledMasks", "none", MASK, PASSES), ("enabledMasks", "lower", MASK, PASSES, "lowerMask=-100"),
    ("enabledMasks", "upper-and-lower", MASK, FAILS, "upperMask=30 lowerMask=0"),
    ("upperMask", "30", MASK, PASSES),
    ("lowerMask", "0", MASK, FAILS, "enabledMasks=lower lowerMask=-100"),
    ("referenceLevel", "spectrum-peak", "mask.spectrumPeak", "was == 0 and now == 20"),
    ("customReferenceLevel", "30", MASK, PASSES),
    ("spectralMaskChannel", "1", "mask.spectrumPeak", "was == 20 and now == 15", "referenceLevel=spectrum-peak"),
    ("maskFrequencyOffset", "7", MASK, PASSES, "upperMask=95,105,0,0"),
    ("frequencyLimits", "-40,40", MASK, PASSES),
    ("frequencyOffset", "17,17", MASK, PASSES, "upperMask=95,105,0,0"),
])
without_effect("lines", "spectral_mask_tester_filter", INDICES + " spectralMaskSignal=1",
               "all signals are tested; the peak reference stays in the first")
for stage, option, field in (
        ("channel_measurements_filter", "channelMeasurementsEnabled", "measurements.channel"),
        ("distortion_measurements_filter", "distortionMeasurementsEnabled", "measurements.distortion"),
        ("phase_noise_filter", "phaseNoiseEnabled", "phaseNoise"),
        ("spectral_mask_tester_filter", "spectralMaskEnabled", "measurements.spectralMask")):
    rows("spectrum", stage, [(option, "false", "message." + field, "was is not None and now is None")])
# The second signal, and the hold traces of a spectrum that is twice as strong in every second frame.
for stage, strength, field, effect in (
        ("frequency_peak_finder_filter", "peaks.peaks.0.value", "peaks.peaks.0.location", "was == 128 and now == 192"),
        ("channel_measurements_filter", "channel.channelPower", "channel.channelPower", "now < was - 9"),
        ("distortion_measurements_filter", "distortion.harmonicPower.0", "distortion.harmonicFrequency.0",
         "was == 128 and now == 192")):
    rows("spectrum", stage, [("measurementSignal", "1", field, effect)])
    rows("spectrum with hold traces", stage, [
        ("normalTraceData", "false", strength, "close(was - now, 20 * log10(2))"),
        ("maxHoldTraceData", "true", strength, "close(now - was, 20 * log10(2))", "normalTraceData=false")])
    without_effect("spectrum with hold traces", stage, "minHoldTraceData=true", "the other two choose the trace")

# --- simulations -----------------------------------------------------------------------------------------------------

rows("tests/simulation/BFSimulationPacerFilterTest.cpp", "bf_simulation_pacer_filter", [
    ("simDriftRateThreshold", "0", "answersTheSetupAlone", "a threshold of 0 holds on any positive rate")])
rows("simulation", "bf_simulation_pacer_filter", [
    ("enableSimDriftRateThreshold", "false", "board.simDriftRate", "now == 0 and was < 0")])
rows("simulation without times", "bf_simulation_meta_data_filter", [
    ("compiledStepSize", "0.5", "board.simTime", "was == 0 and close(now % 5, 4.5)"),
    ("useBlockflowSimTime", "true", "board.simTime", "now == 70", "compiledStepSize=0.5")])
without_effect("simulation without times", "bf_simulation_meta_data_filter", INDICES, NO_INDEX)
without_effect("simulation in an application", "bf_app_simulation_meta_data_filter",
               "compiledStepSize=0.5 useBlockflowSimTime=true", "the times of the frames count")
without_effect("simulation in an application", "bf_app_simulation_meta_data_filter", INDICES, NO_INDEX)
CACHE = "bf_wavedeck_measurements_data_cache_filter"
rows("simulation", CACHE, [
    ("measurementSignal", "1", "stats.yMax", "close(now, 1.9925)"),
    ("measurementChannel", "1", "stats.yMax", "now > 1.9 * was"),
    ("magPhaseData", "true,false", "stats.mean", "now != was"),
    ("autoSpan", "true", "stats", "now != was", "autoTimeRange=0.35"),
    ("autoTimeRange", "0.35", "stats", "now != was", "autoSpan=true"),
    ("isBlockInFrameProcMode", "true", "stats", "now != was", "autoSpan=true autoTimeRange=0.35")])
statistics("simulation", "bf_time_signal_statistics_filter")
peak_finder("simulation", "bf_time_peak_finder_filter", 10)
bilevel("simulation", "bf_bilevel_measurements_filter")
trigger("simulation with trigger", "bf_trigger_filter")
for stage, field in (("bf_time_signal_statistics_filter", "stats"), ("bf_time_peak_finder_filter", "peaks"),
                     ("bf_bilevel_measurements_filter", "bilevel")):
    rows("simulation", stage, [
        ("measurementSignal", "1", "board.measurementSignal" if field == "bilevel" else field, "now != was"),
        ("autoSpan", "true", field, "now != was", "autoTimeRange=0.3"),
        ("autoTimeRange@setup", "0.3", field, "now != was", "autoSpan=true"),
        ("isBlockInFrameProcMode@setup", "true", field, "now != was", "autoSpan=true autoTimeRange=0.3"),
        ("startTime@setup", "0.5", field, "now != was")])
    rows("simulation in one frame", stage, [("customSpan@setup", "0.3", field, "now != was")])
    without_effect("simulation", stage, "magPhaseData=true,false", "the stage that keeps the samples cuts them")
    if field == "bilevel":
        rows("simulation", stage, [("measurementChannel", "1", "board.measurementChannel", "now == 1")])
    else:
        without_effect("simulation", stage, "measurementChannel=1",
                       "the stage that keeps the samples chooses the channel")
    without_effect("simulation", stage, "timeSpanIsOneFramePeriod=true", "the client tells it")
rows("simulation with trigger", "bf_trigger_filter", [
    ("customSpan", "0.08", "trigger", SPANNED % 0.08), ("autoSpan", "true", "trigger", SPANNED % 0.099)],
     "autoLevel=false level=0.25")
without_effect("simulation with trigger", "bf_trigger_filter", "startTime=0.5 timeSpanIsOneFramePeriod=true",
               "a window lies where it triggers")
rows("simulation of steps with trigger", "bf_trigger_filter", [
    ("autoTimeRange", "0.08", "trigger", SPANNED % 0.08),
    ("isBlockInFrameProcMode", "true", "trigger", SPANNED % 0.07)], "autoLevel=false level=0.25 autoSpan=true")
estimator("simulation of spectra", "bf_spectrum_estimator_filter")
rows("simulation of spectra", "bf_spectrum_estimator_filter", [
    ("inputDataType@setup", "int16,int16", "levels", "now != was", "spectrumUnits=dbfs"),
    ("fullScaleOverflow@setup", "true", "message.spectrum.fullScaleOverflow", "was is False and now is True")])
rows("simulation of spectra with gaps", "bf_spectrum_estimator_filter", [
    ("useNaNsInCalculatingAverages@setup", "true", "message.signals.0.channel.0.NaNIdx",
     "was == [] and len(now) == 256")], "forgettingFactor=0.9")
without_effect("simulation of spectra", "bf_spectrum_data_aggregator_filter",
               INDICES + " magPhaseData=true,false autoSpan=true customSpan=0.5",
               "rows are laid out whatever they hold")
without_effect("simulation of spectra", "bf_input_port_parameters_handler_filter", INDICES,
               "the ports are the last signals")
for option, entry, of_estimator, given in (
        ("inputPortFrequencyVector", "board.frequencyVector", "frequencies",
         "inputDomain=frequency autoFrequencyVector=false"),
        ("inputPortRBW", "board.rbw", "estimator.rbw", "frequencyResolutionMethod=rbw autoRBW=false"),
        ("inputPortVBW", "board.vbw", "estimator.vbw", "averagingMethod=vbw autoVBW=false")):
    rows("port", "bf_input_port_parameters_handler_filter", [(option, "true", entry, "now in (16, [16])")])
    rows("port for " + option, "bf_spectrum_estimator_filter", [(option, "true", of_estimator, "now != was")], given)

# --- what the host gives ---------------------------------------------------------------------------------------------

rows("tests/wavedeck/scripts/option_faults.json", "host", [
    ("action", "", "Option: action was not found", "nothing is done without it"),
    ("clientID", "", "Option: clientID was not found", "nothing is set up without it")])
rows("tests/wavedeck/scripts/counters_and_replay.json", "host", [
    ("numChannels", "", "size", "another number is counted from the next frame on"),
    ("frameSize", "", "size", "another size is counted from the next frame on")])
rows("tests/host/DeckClientTest.cpp", "host", [
    ("numSignals", "", "SetupListsCarryTheRawCountsForEveryStage", "the signals of the client")])
rows("tests/spectrum/filters/BFSpectrumEstimatorFilterTest.cpp", "host", [
    ("sampleTime", "", "takesANewFrameSizeForANewSampleRate", "a new frame size means a new sample rate")])
rows("tests/measurements/time/SpanFiltersTest.cpp", "host", [
    ("rollbacktime", "", "keepsTheMeasuredChannel", "samples from that time on are dropped")])
rows("tests/magphase/MagPhaseFilterTest.cpp", "host", [
    ("timeRange", "", "publishesMarksAndSpans", "stands on the board")])

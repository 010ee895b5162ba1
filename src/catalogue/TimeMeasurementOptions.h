#pragma once

#include "BaseOptions.h"
#include "Option.h"
#include "PeakFinderOptions.h"
#include "SignalStatisticsOptions.h"

/// The dsp_wavedeck_measurements_data_cache_filter.
namespace dspwavedecks::catalogue::measurementsDataCache {

inline constexpr Option rollbacktime =
    number("rollbacktime", "", "s", "time to which the simulation steps back").readAt(When::Rollback).fromHost();

inline constexpr auto options = join(
    list(base::action, base::clientID, base::numChannels, base::numSignals, base::frameSizeAtSizeChange, rollbacktime),
    base::measuredChannel, list(base::magPhaseData));

}  // namespace dspwavedecks::catalogue::measurementsDataCache

/// The bilevel_measurements_filter.
namespace dspwavedecks::catalogue::bilevelMeasurements {

inline constexpr Option autoStateLevel = logical("autoStateLevel", "true", "find the two state levels in the data");
inline constexpr Option highStateLevel = number("highStateLevel", "2.3", "data", "high state when it is not found");
inline constexpr Option lowStateLevel = number("lowStateLevel", "0", "data", "low state when it is not found");
inline constexpr Option stateLevelTolerance =
    number("stateLevelTolerance", "2", "%", "band around each state, of the amplitude");
inline constexpr Option upperReferenceLevel =
    number("upperReferenceLevel", "90", "%", "upper level of rise and fall times, of the amplitude");
inline constexpr Option midReferenceLevel =
    number("midReferenceLevel", "50", "%", "level of the crossings, of the amplitude");
inline constexpr Option lowerReferenceLevel =
    number("lowerReferenceLevel", "10", "%", "lower level of rise and fall times, of the amplitude");
inline constexpr Option settleSeek = number("settleSeek", "0.02", "s", "time after a transition to look for settling");
inline constexpr Option showTransitions =
    logical("showTransitions", "false", "measure edges, rise and fall times and slew rates");
inline constexpr Option showAberrations =
    logical("showAberrations", "false", "measure preshoot, overshoot, undershoot and settling time");
inline constexpr Option showCycles =
    logical("showCycles", "false", "measure period, frequency, pulse widths and duty cycles");
inline constexpr Option bilevelMeasurementsEnabled =
    logical("bilevelMeasurementsEnabled", "false", "switch the pulse measurements on");

inline constexpr auto options = join(
    base::hostFacts, base::measuredChannel,
    list(autoStateLevel, highStateLevel, lowStateLevel, stateLevelTolerance, upperReferenceLevel, midReferenceLevel,
         lowerReferenceLevel, settleSeek, showTransitions, showAberrations, showCycles, bilevelMeasurementsEnabled),
    base::spans);

}  // namespace dspwavedecks::catalogue::bilevelMeasurements

/// The span of a block-diagram simulation that its time measurements use.
namespace dspwavedecks::catalogue::blockflowRange {

inline constexpr Option isBlockInFrameProcMode =
    logical("isBlockInFrameProcMode", "false", "the block works on frames").atSetup();
inline constexpr Option startTime = number("startTime", "0", "s", "start of the span").atSetup();
inline constexpr Option timeSpanIsOneFramePeriod =
    logical("timeSpanIsOneFramePeriod", "false", "the span is one frame's period").atSetup();
inline constexpr Option autoTimeRange = number("autoTimeRange", "10", "s", "length of an automatic span").atSetup();

inline constexpr auto range = list(isBlockInFrameProcMode, startTime, timeSpanIsOneFramePeriod, autoTimeRange);

inline constexpr auto statisticsOptions = join(signalStatistics::options, range);
inline constexpr auto peakFinderOptions = join(peakFinder::options, range);
inline constexpr auto bilevelOptions = join(bilevelMeasurements::options, range);
inline constexpr auto cacheOptions =
    join(measurementsDataCache::options, list(isBlockInFrameProcMode, base::autoSpanAtSetup, autoTimeRange));

}  // namespace dspwavedecks::catalogue::blockflowRange

#include "BoardRecords.h"

#include <utility>
#include <vector>

#include "JsonText.h"

namespace program {

namespace {

std::string peaksAsJson(const dspwavedecks::peakFinderStruct& record) {
    std::vector<std::string> peaks;
    for (const auto& peak : record.peaks) {
        peaks.push_back(jsonObject({{"value", toJson(peak.value)}, {"location", toJson(peak.location)}}));
    }
    return jsonList(peaks);
}

}  // namespace

std::string toJson(const dspwavedecks::signalStatsStruct& record) {
    return jsonObject({
        {"xMin", toJson(record.xMin)},
        {"xMax", toJson(record.xMax)},
        {"yMin", toJson(record.yMin)},
        {"yMax", toJson(record.yMax)},
        {"peakToPeak", toJson(record.peakToPeak)},
        {"mean", toJson(record.mean)},
        {"variance", toJson(record.variance)},
        {"standardDeviation", toJson(record.standardDeviation)},
        {"median", toJson(record.median)},
        {"rms", toJson(record.rms)},
        {"meanSquare", toJson(record.meanSquare)},
        {"varianceValid", toJson(record.varianceValid)},
        {"minMaxValid", toJson(record.minMaxValid)},
        {"meanValid", toJson(record.meanValid)},
        {"timeRange", toJson(record.timeRange)},
    });
}

std::string toJson(const dspwavedecks::peakFinderStruct& record) {
    return jsonObject({
        {"peaks", peaksAsJson(record)},
        {"numPeaks", toJson(record.numPeaks)},
        {"isNewDataReady", toJson(record.isNewDataReady)},
    });
}

std::string toJson(const dspwavedecks::channelMeasurementsStruct& record) {
    return jsonObject({
        {"type", toJson(static_cast<unsigned>(record.type))},
        {"channelPower", toJson(record.channelPower)},
        {"frequencyError", toJson(record.frequencyError)},
        {"startFrequency", toJson(record.startFrequency)},
        {"stopFrequency", toJson(record.stopFrequency)},
        {"occupiedBW", toJson(record.occupiedBW)},
        {"numOffsets", toJson(record.numOffsets)},
        {"acprUpper", toJson(record.acprUpper)},
        {"acprLower", toJson(record.acprLower)},
        {"isNewDataReady", toJson(record.isNewDataReady)},
    });
}

std::string toJson(const dspwavedecks::distortionStruct& record) {
    return jsonObject({
        {"type", toJson(static_cast<unsigned>(record.type))},
        {"numHarmonics", toJson(record.numHarmonics)},
        {"thd", toJson(record.thd)},
        {"thdPercent", toJson(record.thdPercent)},
        {"snr", toJson(record.snr)},
        {"sinad", toJson(record.sinad)},
        {"sfdr", toJson(record.sfdr)},
        {"toi", toJson(record.toi)},
        {"harmonicPower", toJson(record.harmonicPower)},
        {"harmonicFrequency", toJson(record.harmonicFrequency)},
        {"isNewDataReady", toJson(record.isNewDataReady)},
    });
}

std::string toJson(const dspwavedecks::phaseNoiseStruct& record) {
    return jsonObject({
        {"totalNumChannels", toJson(record.totalNumChannels)},
        {"numSpotFrequencyOffsets", toJson(record.numSpotFrequencyOffsets)},
        {"maxNumPoints", toJson(record.maxNumPoints)},
        {"numPoints", toJson(record.numPoints)},
        {"spotFrequencyOffset", toJson(record.spotFrequencyOffset)},
        {"spotPhaseNoise", toJson(record.spotPhaseNoise)},
        {"frequencyOffset", toJson(record.frequencyOffset)},
        {"phaseNoise", toJson(record.phaseNoise)},
        {"frequencyOffsetLimits", toJson(record.frequencyOffsetLimits)},
        {"phaseNoiseLimits", toJson(record.phaseNoiseLimits)},
        {"isNewDataReady", toJson(record.isNewDataReady)},
    });
}

std::string toJson(const dspwavedecks::spectralMaskStruct& record) {
    return jsonObject({
        {"successRate", toJson(record.successRate)},
        {"numPassedTests", toJson(record.numPassedTests)},
        {"numTotalTests", toJson(record.numTotalTests)},
        {"spectrumPeak", toJson(record.spectrumPeak)},
        {"currentStatus", toJson(record.currentStatus)},
        {"failingMasks", toJson(record.failingMasks)},
        {"upperMaskStatus", toJson(record.upperMaskStatus)},
        {"lowerMaskStatus", toJson(record.lowerMaskStatus)},
        {"isCurrentlyPassing", toJson(record.isCurrentlyPassing)},
        {"isNewDataReady", toJson(record.isNewDataReady)},
        {"failingChannels", toJson(record.failingChannels)},
    });
}

std::string toJson(const dspwavedecks::spectrumEstimatorMetaDataStruct& record) {
    return jsonObject({
        {"segmentLength", toJson(record.segmentLength)},
        {"fftLength", toJson(record.fftLength)},
        {"spectrumLength", toJson(record.spectrumLength)},
        {"numSegments", toJson(record.numSegments)},
        {"numSpectrumBlocks", toJson(record.numSpectrumBlocks)},
        {"numSpectrogramLines", toJson(record.numSpectrogramLines)},
        {"numSamplesPerUpdate", toJson(record.numSamplesPerUpdate)},
        {"spectrogramChannel", toJson(record.spectrogramChannel)},
        {"numSamplesProcessed", toJson(record.numSamplesProcessed)},
        {"numUpdatesProcessed", toJson(record.numUpdatesProcessed)},
        {"numSpectralAverages", toJson(record.numSpectralAverages)},
        {"numAdditionalSamples", toJson(record.numAdditionalSamples)},
        {"sampleRate", toJson(record.sampleRate)},
        {"rbw", toJson(record.rbw)},
        {"transientRBW", toJson(record.transientRBW)},
        {"vbw", toJson(record.vbw)},
        {"enbw", toJson(record.enbw)},
        {"timeResolution", toJson(record.timeResolution)},
        {"timeSpan", toJson(record.timeSpan)},
        {"timeIncrement", toJson(record.timeIncrement)},
        {"forgettingFactor", toJson(record.forgettingFactor)},
        {"minDeltaF", toJson(record.minDeltaF)},
        {"plotMaxHoldTrace", toJson(record.plotMaxHoldTrace)},
        {"plotMinHoldTrace", toJson(record.plotMinHoldTrace)},
        {"showSpectrum", toJson(record.showSpectrum)},
        {"showSpectrogram", toJson(record.showSpectrogram)},
        {"isNewDataReady", toJson(record.isNewDataReady)},
        {"linearFrequencyVector", toJson(record.linearFrequencyVector)},
        {"maxSegmentLengthMet", toJson(record.maxSegmentLengthMet)},
        {"desiredSegmentLengthMet", toJson(record.desiredSegmentLengthMet)},
        {"fullScaleOverflow", toJson(record.fullScaleOverflow)},
        {"resetCachedNumSamplesProcessed", toJson(record.resetCachedNumSamplesProcessed)},
        {"resetSignalBuffers", toJson(record.resetSignalBuffers)},
        {"dataHasNaNs", toJson(record.dataHasNaNs)},
        {"useNaNsInCalculatingAverages", toJson(record.useNaNsInCalculatingAverages)},
        {"maxHoldTrace", toJson(record.maxHoldTrace)},
        {"minHoldTrace", toJson(record.minHoldTrace)},
        {"frequencyVector", toJson(record.frequencyVector)},
        {"frequencyOffset", toJson(record.frequencyOffset)},
        {"spectrumData", toJson(record.spectrumData)},
        {"numChannels", toJson(record.numChannels)},
    });
}

std::string toJson(const dspwavedecks::bilevelMeasurementsStruct& record) {
    std::vector<std::pair<std::string, std::string>> members;
    for (const auto& field : dspwavedecks::bilevelMeasurementsFields) {
        members.emplace_back(field.name, toJson(record.*field.value));
    }
    return jsonObject(members);
}

std::string toJson(const dspwavedecks::triggerStruct& record) {
    return jsonObject({
        {"startTime", toJson(record.startTime)},
        {"endTime", toJson(record.endTime)},
        {"position", toJson(record.position)},
        {"level", toJson(record.level)},
        {"highLevel", toJson(record.highLevel)},
        {"lowLevel", toJson(record.lowLevel)},
        {"enableOnceMode", toJson(record.enableOnceMode)},
        {"signal", toJson(record.signal)},
        {"mode", toJson(record.mode)},
    });
}

std::string toJson(const boost::circular_buffer<dspwavedecks::triggerStruct>& queue) {
    std::vector<std::string> events;
    for (const auto& event : queue) {
        events.push_back(toJson(event));
    }
    return jsonList(events);
}

}  // namespace program

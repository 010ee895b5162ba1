// The estimator's record as JSON for the client.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <mutex>
#include <numeric>
#include <string>
#include <vector>

#include "Board.h"
#include "NumberText.h"
#include "SpectrumEstimatorFilter.h"

namespace dspwavedecks {

namespace {

using ArrayPointer = Poco::JSON::Array::Ptr;
using ObjectPointer = Poco::SharedPtr<Poco::JSON::Object>;
using Record = spectrumEstimatorMetaDataStruct;

/// The channels of one signal in a hold trace, or in an array of them.
struct TraceStretch {
    std::size_t first;     ///< index of the first channel's first point
    std::size_t channels;  ///< number of channels
    std::size_t length;    ///< points of a channel
};

/// Sets an array with an array of numbers for each channel, and one with the places of what is not finite. A channel
/// that the trace does not hold in full is empty.
void packageTrace(const std::vector<double>& trace, const TraceStretch& stretch, const std::string& key,
                  ObjectPointer& package, JsonArrayPool& arrays) {
    ArrayPointer channels = new Poco::JSON::Array;
    ArrayPointer nanIndices = new Poco::JSON::Array;
    std::vector<int> places;
    for (std::size_t channel = 0; channel < stretch.channels; ++channel) {
        const std::size_t start = stretch.first + channel * stretch.length;
        const bool isHeld = start + stretch.length <= trace.size();
        const std::size_t count = isHeld ? stretch.length : 0;
        places.clear();
        ArrayPointer values = arrays.take(count);
        JsonArrayWriter writer(*values);
        writer.appendFinite(trace.data() + (isHeld ? start : 0), count, 0, places);
        writer.finish();
        ArrayPointer indices = arrays.take(places.size());
        JsonArrayWriter indexWriter(*indices);
        indexWriter.append(places);
        indexWriter.finish();
        channels->add(values);
        nanIndices->add(indices);
    }
    package->set(key, channels);
    package->set(key + "NaNIdx", nanIndices);
}

}  // namespace

ObjectPointer SpectrumEstimatorFilter::packageImpl(const std::string& clientID) {
    ObjectPointer package = new Poco::JSON::Object;
    auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    const Record missing;
    const Record* const stored = board::find<Record>(settings, spectrumEstimatorMetaData);
    const Record& record = stored != nullptr ? *stored : missing;
    package->set("sampleRate", record.sampleRate);
    package->set("enbw", record.enbw);
    package->set("fftLength", record.fftLength);
    package->set("numSegments", record.numSegments);
    package->set("numSpectrumBlocks", record.numSpectrumBlocks);
    package->set("rbw", record.rbw);
    package->set("transientRBW", record.transientRBW);
    package->set("vbw", record.vbw);
    package->set("segmentLength", record.segmentLength);
    package->set("spectrumLength", record.spectrumLength);
    package->set("numSamplesPerUpdate", record.numSamplesPerUpdate);
    package->set("numSpectrogramLines", record.numSpectrogramLines);
    package->set("numSamplesProcessed", record.numSamplesProcessed);
    package->set("numUpdatesProcessed", record.numUpdatesProcessed);
    package->set("numAdditionalSamples", record.numAdditionalSamples);
    package->set("timeResolution", record.timeResolution);
    package->set("timeSpan", record.timeSpan);
    package->set("timeIncrement", record.timeIncrement);
    package->set("showSpectrum", record.showSpectrum);
    package->set("showSpectrogram", record.showSpectrogram);
    package->set("plotMaxHoldTrace", record.plotMaxHoldTrace);
    package->set("plotMinHoldTrace", record.plotMinHoldTrace);
    package->set("linearFrequencyVector", record.linearFrequencyVector);
    ArrayPointer offsets = new Poco::JSON::Array;
    for (const double offset : record.frequencyOffset) {
        offsets->add(offset);
    }
    package->set("frequencyOffset", offsets);
    package->set("forgettingFactor", record.forgettingFactor);
    package->set("numSpectralAverages", record.numSpectralAverages);
    package->set("minDeltaF", record.minDeltaF);
    package->set("maxSegmentLengthMet", record.maxSegmentLengthMet);
    package->set("desiredSegmentLengthMet", record.desiredSegmentLengthMet);
    package->set("fullScaleOverflow", record.fullScaleOverflow);
    package->set("resetSignalBuffers", record.resetSignalBuffers);
    package->set("dataHasNaNs", record.dataHasNaNs);
    package->set("useNaNsInCalculatingAverages", record.useNaNsInCalculatingAverages);
    return package;
}

ObjectPointer SpectrumEstimatorFilter::packageImpl(const std::string& clientID, int signal, int numChannels, int length,
                                                   JsonArrayPool& arrays) {
    ObjectPointer package = new Poco::JSON::Object;
    auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    const Record* const record = board::find<Record>(settings, spectrumEstimatorMetaData);
    if (record == nullptr) {
        return package;
    }
    const auto signalsBefore = std::min(static_cast<std::size_t>(std::max(signal, 0)), record->numChannels.size());
    const int channelsBefore = std::accumulate(
        record->numChannels.begin(), record->numChannels.begin() + static_cast<std::ptrdiff_t>(signalsBefore), 0);
    const auto points = static_cast<std::size_t>(std::max(length, 0));
    const TraceStretch stretch{points * static_cast<std::size_t>(std::max(channelsBefore, 0)),
                               static_cast<std::size_t>(std::max(numChannels, 0)), points};
    if (record->plotMaxHoldTrace) {
        packageTrace(record->maxHoldTrace, stretch, "maxHold", package, arrays);
        const auto largest = std::max_element(record->maxHoldTrace.begin(), record->maxHoldTrace.end());
        package->set(
            "maxHoldDataMax",
            numberText(largest != record->maxHoldTrace.end() ? *largest : -std::numeric_limits<double>::infinity()));
    }
    if (record->plotMinHoldTrace) {
        packageTrace(record->minHoldTrace, stretch, "minHold", package, arrays);
        const auto smallest = std::min_element(record->minHoldTrace.begin(), record->minHoldTrace.end());
        package->set(
            "minHoldDataMin",
            numberText(smallest != record->minHoldTrace.end() ? *smallest : std::numeric_limits<double>::infinity()));
    }
    return package;
}

}  // namespace dspwavedecks

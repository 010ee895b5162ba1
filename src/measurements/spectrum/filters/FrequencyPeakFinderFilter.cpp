#include "FrequencyPeakFinderFilter.h"

#include <algorithm>

#include "OptionTable.h"
#include "SpectrumEstimatorFilter.h"
#include "SpectrumMeasurementOptions.h"

namespace dspwavedecks {

void FrequencyPeakFinderFilter::setPropertiesImpl(const PropertyList& list) {
    PeakFinderFilter::setPropertiesImpl(list);
    namespace common = catalogue::spectrumMeasurement;
    readOptions(list,                                                                   //
                ifPresent<common::measurementChannelFrequencyOffset>(frequencyOffset),  //
                ifPresent<catalogue::frequencyPeakFinder::frequencyLimits>(frequencyLimits));
    trace.readOptions(list);
}

void FrequencyPeakFinderFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    computeFrequencyRange(data, signal);
    const std::vector<unsigned long> range = getDataRange(signal);
    found.peaks.clear();
    found.numPeaks = 0;
    found.isNewDataReady = false;
    if (range[0] < range[1]) {
        if (trace.isNormal()) {
            found = peakFinder_->findPeaks(data, range, PeakSelectionLastMaximum);
            markZeroFrequency(data, range);
        } else {
            const auto* const record = SpectrumEstimatorFilter::getSpectrumEstimatorMetaData(clientID);
            found = peakFinder_->findPeaks(trace.selectHold(*record).data(), range, PeakSelectionLastMaximum);
        }
        // The grid stands at the head of the frame for hold traces too.
        for (peakFinderStruct::Peak& peak : found.peaks) {
            peak.location = data[frequencyRange[0] + static_cast<unsigned long>(peak.location)] + frequencyOffset;
        }
    }
    publish(found);
    updateFilterSignalAndChannel();
}

/// Adds the bin at 0 Hz, and drops the weakest of all where they are one too many.
void FrequencyPeakFinderFilter::markZeroFrequency(const double* data, const std::vector<unsigned long>& range) {
    if (data[frequencyRange[0]] == 0.0 && data[range[0]] > data[range[0] + 1]) {
        found.peaks.push_back({data[range[0]], 0.0});
    }
    std::sort(found.peaks.begin(), found.peaks.end(), [](const auto& a, const auto& b) {
        return a.value > b.value || (a.value == b.value && a.location > b.location);
    });
    if (found.peaks.size() > peakFinder_->getNumPeaks()) {
        found.peaks.resize(peakFinder_->getNumPeaks());
    }
    found.numPeaks = found.peaks.size();
}

void FrequencyPeakFinderFilter::computeFrequencyRange(const double* freq, const int& /*signal*/) {
    const unsigned long length = SpectrumEstimatorFilter::getSpectrumLength(clientID);
    if (length == 0 || length > inputLength || frequencyLimits.size() < 2) {
        frequencyRange[1] = frequencyRange[0];
        return;
    }
    const auto firstAtOrAbove = [freq, length](double limit) {
        const double* const found =
            std::partition_point(freq, freq + length, [limit](double f) { return !(f >= limit); });
        return static_cast<unsigned long>(found - freq);
    };
    const unsigned long lower = firstAtOrAbove(frequencyLimits[0]);
    frequencyRange[0] = lower < length ? lower : frequencyRange[0];
    frequencyRange[1] = std::min(firstAtOrAbove(frequencyLimits[1]), length - 1);
}

std::vector<unsigned long> FrequencyPeakFinderFilter::getDataRange(const int& signal) {
    const unsigned long length = SpectrumEstimatorFilter::getSpectrumLength(clientID);
    if (frequencyRange[0] >= frequencyRange[1] || frequencyRange[1] >= length) {
        return {0, 0};
    }
    unsigned long first = 0;
    if (trace.isNormal()) {
        const SpectrumFrameLayout layout(inputLength, numFrequencyBlocks,
                                         countChannels(getChannelCount(signal), isComplexSignal(signal)));
        if (!layout.holdsSpectrum(measurementChannel_, length)) {
            return {0, 0};
        }
        first = layout.endOf(measurementChannel_) - length;
    } else {
        const auto* const record = SpectrumEstimatorFilter::getSpectrumEstimatorMetaData(clientID);
        if (record == nullptr) {
            return {0, 0};
        }
        const auto range = MeasuredTrace::rangeInHold(trace.selectHold(*record), measurementChannel_, length);
        if (range[0] == range[1]) {
            return {0, 0};
        }
        first = range[0];
    }
    return {first + frequencyRange[0], first + frequencyRange[1]};
}

}  // namespace dspwavedecks

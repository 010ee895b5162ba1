#include "SpectrumMeasurementQueries.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "ChannelMeasurementsFilter.h"
#include "DistortionMeasurementsFilter.h"
#include "FrequencyPeakFinderFilter.h"
#include "PhaseNoiseFilter.h"
#include "QueryStructure.h"
#include "SimulationMetaDataFilter.h"
#include "SpectralMaskTesterFilter.h"

namespace dspwavedecks {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// A copy of a client's record, a fresh one if there is none; the stored one is no longer new.
template <class Record>
Record takeRecord(const nbArray** prhs, const std::string& key) {
    Record* const stored = queriedRecord<Record>(prhs, key);
    if (stored == nullptr) {
        return Record();
    }
    Record copy = *stored;
    stored->isNewDataReady = false;
    return copy;
}

std::vector<double> firstOf(std::vector<double> values, std::size_t count) {
    values.resize(count, nan);
    return values;
}

/// A matrix of NaN, to be filled column by column.
class Columns {
public:
    Columns(std::size_t rows, std::size_t columns) : rows(rows), matrix(nbCreateDoubleMatrix(rows, columns)) {
        std::fill_n(nbGetDoubles(matrix.get()), rows * columns, nan);
    }
    void set(std::size_t column, const std::vector<double>& values, std::size_t count) {
        const auto length = static_cast<std::ptrdiff_t>(std::min({count, values.size(), rows}));
        std::copy(values.begin(), values.begin() + length, nbGetDoubles(matrix.get()) + column * rows);
    }
    NbArrayPointer release() { return std::move(matrix); }

private:
    std::size_t rows;
    NbArrayPointer matrix;
};

}  // namespace

void answerPeaks(nbArray** plhs, const nbArray** prhs) {
    const auto record = takeRecord<peakFinderStruct>(prhs, PeakFinderFilter::peakFinder);
    std::vector<double> locations;
    std::vector<double> values;
    for (const peakFinderStruct::Peak& peak : record.peaks) {
        locations.push_back(peak.location);
        values.push_back(peak.value);
    }
    QueryStructure structure({"Frequency", "Value"});
    structure.setColumn("Frequency", firstOf(std::move(locations), record.numPeaks));
    structure.setColumn("Value", firstOf(std::move(values), record.numPeaks));
    plhs[0] = structure.release();
}

void answerNewPeaks(nbArray** plhs, const nbArray** prhs) {
    answerIsNewDataReady<peakFinderStruct>(plhs, prhs, PeakFinderFilter::peakFinder);
}

void answerChannelMeasurements(nbArray** plhs, const nbArray** prhs) {
    const auto record = takeRecord<channelMeasurementsStruct>(prhs, ChannelMeasurementsFilter::channel);
    const bool isACPR = record.type != ChannelMeasurementEnum::Type::occupiedBandwidth;
    if (isACPR) {
        QueryStructure structure({"ChannelPower", "ACPRLower", "ACPRUpper"});
        structure.setDouble("ChannelPower", record.channelPower);
        if (!record.acprLower.empty()) {
            structure.setColumn("ACPRLower", firstOf(record.acprLower, record.numOffsets));
        }
        if (!record.acprUpper.empty()) {
            structure.setColumn("ACPRUpper", firstOf(record.acprUpper, record.numOffsets));
        }
        plhs[0] = structure.release();
    } else {
        QueryStructure structure({"ChannelPower", "OccupiedBW", "FrequencyError"});
        structure.setDouble("ChannelPower", record.channelPower);
        structure.setDouble("OccupiedBW", record.occupiedBW);
        structure.setDouble("FrequencyError", record.frequencyError);
        plhs[0] = structure.release();
    }
    plhs[1] = nbCreateLogicalScalar(isACPR);
}

void answerNewChannelMeasurements(nbArray** plhs, const nbArray** prhs) {
    answerIsNewDataReady<channelMeasurementsStruct>(plhs, prhs, ChannelMeasurementsFilter::channel);
}

void answerDistortionMeasurements(nbArray** plhs, const nbArray** prhs) {
    const auto record = takeRecord<distortionStruct>(prhs, DistortionMeasurementsFilter::distortion);
    const std::vector<double> frequencies = firstOf(record.harmonicFrequency, record.numHarmonics);
    const std::vector<double> powers = firstOf(record.harmonicPower, record.numHarmonics);
    const bool isHarmonic = record.type == DistortionMeasurementEnum::Type::harmonic;
    if (isHarmonic) {
        std::vector<double> orders;
        for (unsigned long order = 1; order <= record.numHarmonics; ++order) {
            orders.push_back(static_cast<double>(order));
        }
        QueryStructure structure({"HarmonicNumber", "Frequency", "Power", "THD", "THDPercent", "SNR", "SINAD", "SFDR"});
        structure.setColumn("HarmonicNumber", orders);
        structure.setColumn("Frequency", frequencies);
        structure.setColumn("Power", powers);
        structure.setDouble("THD", record.thd);
        structure.setDouble("THDPercent", record.thdPercent);
        structure.setDouble("SNR", record.snr);
        structure.setDouble("SINAD", record.sinad);
        structure.setDouble("SFDR", record.sfdr);
        plhs[0] = structure.release();
    } else {
        QueryStructure structure({"Frequency", "Power", "TOI"});
        structure.setColumn("Frequency", frequencies);
        structure.setColumn("Power", powers);
        structure.setDouble("TOI", record.toi);
        plhs[0] = structure.release();
    }
    plhs[1] = nbCreateLogicalScalar(isHarmonic);
}

void answerNewDistortionMeasurements(nbArray** plhs, const nbArray** prhs) {
    answerIsNewDataReady<distortionStruct>(plhs, prhs, DistortionMeasurementsFilter::distortion);
}

void answerPhaseNoise(nbArray** plhs, const nbArray** prhs) {
    const auto record = takeRecord<phaseNoiseStruct>(prhs, PhaseNoiseFilter::phaseNoise);
    Columns spots(record.numSpotFrequencyOffsets, record.totalNumChannels);
    Columns offsets(record.maxNumPoints, record.totalNumChannels);
    Columns levels(record.maxNumPoints, record.totalNumChannels);
    std::size_t column = 0;
    for (std::size_t signal = 0; signal < record.numPoints.size(); ++signal) {
        for (std::size_t c = 0; c < record.numPoints[signal].size() && column < record.totalNumChannels; ++c) {
            const std::size_t numPoints = record.numPoints[signal][c];
            spots.set(column, record.spotPhaseNoise[signal][c], record.numSpotFrequencyOffsets);
            offsets.set(column, record.frequencyOffset[signal][c], numPoints);
            levels.set(column, record.phaseNoise[signal][c], numPoints);
            ++column;
        }
    }
    QueryStructure structure({"SpotPhaseNoise", "FrequencyOffset", "PhaseNoise"});
    structure.setArray("SpotPhaseNoise", spots.release());
    structure.setArray("FrequencyOffset", offsets.release());
    structure.setArray("PhaseNoise", levels.release());
    plhs[0] = structure.release();
}

void answerNewPhaseNoise(nbArray** plhs, const nbArray** prhs) {
    answerIsNewDataReady<phaseNoiseStruct>(plhs, prhs, PhaseNoiseFilter::phaseNoise);
}

void answerSpectralMask(nbArray** plhs, const nbArray** prhs) {
    const auto record = takeRecord<spectralMaskStruct>(prhs, SpectralMaskTesterFilter::spectralMask);
    const double time = board::read<double>(findBoard(queriedClient(prhs)), SimulationMetaDataFilter::simTime);
    NbArrayPointer channels(nbCreateDoubleMatrix(1, record.failingChannels.size()));
    std::transform(record.failingChannels.begin(), record.failingChannels.end(), nbGetDoubles(channels.get()),
                   [](unsigned long id) { return static_cast<double>(id + 1); });
    QueryStructure structure({"IsCurrentlyPassing", "NumPassedTests", "NumTotalTests", "SuccessRate", "FailingMasks",
                              "FailingChannels", "SimulationTime"});
    structure.setLogical("IsCurrentlyPassing", record.isCurrentlyPassing);
    structure.setDouble("NumPassedTests", record.numPassedTests);
    structure.setDouble("NumTotalTests", record.numTotalTests);
    structure.setDouble("SuccessRate", record.successRate);
    structure.setText("FailingMasks", record.failingMasks);
    structure.setArray("FailingChannels", std::move(channels));
    structure.setDouble("SimulationTime", time);
    plhs[0] = structure.release();
}

void answerNewSpectralMask(nbArray** plhs, const nbArray** prhs) {
    answerIsNewDataReady<spectralMaskStruct>(plhs, prhs, SpectralMaskTesterFilter::spectralMask);
}

}  // namespace dspwavedecks

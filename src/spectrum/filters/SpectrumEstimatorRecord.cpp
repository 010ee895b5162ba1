// The estimator's record on the settings board: written after a frame, read under the class's mutex.
#include <algorithm>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "Board.h"
#include "SpectrumEstimatorFilter.h"

namespace dspwavedecks {

namespace {

using Record = spectrumEstimatorMetaDataStruct;

Record* findRecord(board::Settings& settings) {
    return board::find<Record>(settings, SpectrumEstimatorFilter::spectrumEstimatorMetaData);
}

/// The flag that the sample counters began again is handed on, and stays until a query takes it.
void copyFigures(const Record& record, Record& stored) {
    const bool isPending = stored.resetCachedNumSamplesProcessed;
    static_cast<spectrumEstimatorFigures&>(stored) = record;
    stored.resetCachedNumSamplesProcessed = isPending || record.resetCachedNumSamplesProcessed;
}

void copyVectors(const Record& record, Record& stored) {
    stored.maxHoldTrace = record.maxHoldTrace;
    stored.minHoldTrace = record.minHoldTrace;
    stored.frequencyVector = record.frequencyVector;
    stored.frequencyOffset = record.frequencyOffset;
    stored.spectrumData = record.spectrumData;
    stored.numChannels = record.numChannels;
}

/// Copies `count` values from `first` on, or all if the sizes differ.
void copyPart(const std::vector<double>& from, std::vector<double>& to, std::size_t first, std::size_t count) {
    if (from.size() != to.size() || first + count > from.size()) {
        to = from;
    } else {
        std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(first), count,
                    to.begin() + static_cast<std::ptrdiff_t>(first));
    }
}

/// Copies what an update of one signal writes.
void copySignal(const Record& record, Record& stored, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    if (stored.spectrumData.size() != record.spectrumData.size() || index >= record.spectrumData.size()) {
        copyVectors(record, stored);
        return;
    }
    std::size_t before = 0;
    for (std::size_t other = 0; other < index; ++other) {
        before += static_cast<std::size_t>(record.numChannels[other]);
    }
    const std::size_t first = before * record.spectrumLength;
    const std::size_t count = static_cast<std::size_t>(record.numChannels[index]) * record.spectrumLength;
    copyPart(record.maxHoldTrace, stored.maxHoldTrace, first, count);
    copyPart(record.minHoldTrace, stored.minHoldTrace, first, count);
    stored.frequencyVector = record.frequencyVector;
    stored.spectrumData[index] = record.spectrumData[index];
}

void publishDerived(board::Settings& settings, const Record& record) {
    board::write<unsigned long>(settings, SpectrumEstimatorFilter::spectrumLength, record.spectrumLength);
    board::write<double>(settings, SpectrumEstimatorFilter::rbw, record.transientRBW);
}

}  // namespace

void SpectrumEstimatorFilter::setSpectrumEstimatorMetaData(const std::string& clientID, const Record& record) {
    auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    if (Record* const stored = findRecord(settings)) {
        copyFigures(record, *stored);
        copyVectors(record, *stored);
        publishDerived(settings, record);
    }
}

void SpectrumEstimatorFilter::publishRecord(int signal) {
    const Record& record = estimator->getSpectrumMetaData();
    publishedVersion = estimator->getRecordVersion();
    if (isRecordDue || estimator->getNumHoldResets() != publishedResets) {
        setSpectrumEstimatorMetaData(clientID, record);
    } else {
        auto& settings = getBoard();
        const std::lock_guard lock(mMutex);
        if (Record* const stored = findRecord(settings)) {
            copyFigures(record, *stored);
            copySignal(record, *stored, signal);
            publishDerived(settings, record);
        }
    }
    isRecordDue = false;
    publishedResets = estimator->getNumHoldResets();
    estimator->clearResetCachedNumSamplesProcessed();
}

void SpectrumEstimatorFilter::publishRBW() {
    auto& settings = getBoard();
    const std::lock_guard lock(mMutex);
    board::write<double>(settings, rbw, estimator->getSpectrumMetaData().transientRBW);
}

bool SpectrumEstimatorFilter::hasSpectrumEstimatorMetaData(const std::string& clientID) {
    return findBoard(clientID).find(spectrumEstimatorMetaData) != nullptr;
}

const Record* SpectrumEstimatorFilter::getSpectrumEstimatorMetaData(const std::string& clientID) {
    auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    return findRecord(settings);
}

std::vector<double> SpectrumEstimatorFilter::getFrequencyVector(const std::string& clientID) {
    auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    const Record* const stored = findRecord(settings);
    return stored != nullptr ? stored->frequencyVector : std::vector<double>();
}

unsigned long SpectrumEstimatorFilter::getSpectrumLength(const std::string& clientID) {
    const auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    return board::read<unsigned long>(settings, spectrumLength);
}

double SpectrumEstimatorFilter::getRBW(const std::string& clientID) {
    const auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    return board::read<double>(settings, rbw);
}

}  // namespace dspwavedecks

#include "SpectrumQueries.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include "Board.h"
#include "QueryStructure.h"
#include "SimulationMetaDataFilter.h"
#include "SpectrumEstimatorFilter.h"
#include "numbench/Exception.h"

namespace dspwavedecks {

namespace {

using Record = spectrumEstimatorMetaDataStruct;

/// Calls `read` with the record of the client under the mutex. Throws for a client without one, as the call of a query
/// that finds nothing fails.
template <class Read>
void withRecord(const nbArray** prhs, Read read) {
    auto& settings = findBoard(queriedClient(prhs));
    const std::lock_guard lock(SpectrumEstimatorFilter::mMutex);
    Record* const record = board::find<Record>(settings, SpectrumEstimatorFilter::spectrumEstimatorMetaData);
    if (record == nullptr) {
        throw numbench::Exception("Client: has no spectrum");
    }
    read(*record);
}

nbArray* number(std::uint64_t value) {
    return nbCreateDoubleScalar(static_cast<double>(value));
}

/// A matrix with a column for each channel of all signals; columns that find no values stay zero.
/// column  called with signal, channel in it, channel among all, and the column to fill
template <class Column>
NbArrayPointer packageColumns(const Record& record, std::size_t rows, Column column) {
    std::size_t total = 0;
    for (const int channels : record.numChannels) {
        total += static_cast<std::size_t>(channels);
    }
    NbArrayPointer matrix(nbCreateDoubleMatrix(rows, total));
    double* destination = nbGetDoubles(matrix.get());
    std::size_t index = 0;
    for (std::size_t signal = 0; signal < record.numChannels.size(); ++signal) {
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(record.numChannels[signal]); ++channel) {
            column(signal, channel, index, destination + index * rows);
            ++index;
        }
    }
    return matrix;
}

NbArrayPointer empty() {
    return NbArrayPointer(nbCreateDoubleMatrix(0, 0));
}

/// The newest spectrum of each channel: the last S values of its block.
NbArrayPointer packageSpectrum(const Record& record) {
    const std::size_t length = record.spectrumLength;
    const std::size_t block = record.numSpectrumBlocks * length;
    return packageColumns(record, length, [&](std::size_t signal, std::size_t channel, std::size_t, double* column) {
        const std::vector<double>& rows = record.spectrumData[signal];
        const std::size_t end = (channel + 1) * block;
        if (block >= length && rows.size() >= end) {
            std::copy_n(rows.data() + end - length, length, column);
        }
    });
}

/// All lines of the update for the selected channel, of the first signal that has it.
NbArrayPointer packageSpectrogram(const Record& record) {
    const std::size_t block = record.numSpectrumBlocks * record.spectrumLength;
    for (const std::vector<double>& rows : record.spectrumData) {
        // A channel that somebody asks for may be any number: it is compared before it is multiplied.
        if (block > 0 && record.spectrogramChannel < rows.size() / block) {
            return createColumn(rows.data() + record.spectrogramChannel * block, block);
        }
    }
    return NbArrayPointer(nbCreateDoubleMatrix(block, 1));
}

NbArrayPointer packageHoldTrace(const Record& record, const std::vector<double>& trace) {
    const std::size_t block = record.numSpectrumBlocks * record.spectrumLength;
    return packageColumns(record, block, [&](std::size_t, std::size_t, std::size_t index, double* column) {
        if (trace.size() >= (index + 1) * block) {
            std::copy_n(trace.data() + index * block, block, column);
        }
    });
}

}  // namespace

void answerSpectrumData(nbArray** plhs, const nbArray** prhs) {
    auto& settings = findBoard(queriedClient(prhs));
    withRecord(prhs, [&](const Record& record) {
        plhs[0] = nbCreateDoubleScalar(board::readShared<double>(settings, SimulationMetaDataFilter::simTime));
        plhs[1] = createColumn(record.frequencyVector.data(), record.frequencyVector.size()).release();
        plhs[2] = (record.showSpectrum ? packageSpectrum(record) : empty()).release();
        plhs[3] = (record.showSpectrogram ? packageSpectrogram(record) : empty()).release();
        plhs[4] = (record.plotMinHoldTrace ? packageHoldTrace(record, record.minHoldTrace) : empty()).release();
        plhs[5] = (record.plotMaxHoldTrace ? packageHoldTrace(record, record.maxHoldTrace) : empty()).release();
        plhs[6] = nbCreateLogicalScalar(record.isNewDataReady);
        plhs[7] = number(record.spectrumLength);
        plhs[8] = number(record.numSegments);
        plhs[9] = number(record.numSpectrogramLines);
        plhs[10] = nbCreateLogicalScalar(record.desiredSegmentLengthMet);
    });
}

void answerIsNewSpectrumReady(nbArray** plhs, const nbArray** prhs) {
    withRecord(prhs, [&](const Record& record) {
        plhs[0] = nbCreateLogicalScalar(record.isNewDataReady);
        plhs[1] = number(record.numSamplesProcessed);
    });
}

void answerIsSpectrumAvailable(nbArray** plhs, const nbArray** prhs) {
    plhs[0] = nbCreateLogicalScalar(SpectrumEstimatorFilter::hasSpectrumEstimatorMetaData(queriedClient(prhs)));
}

void answerNumSamplesProcessed(nbArray** plhs, const nbArray** prhs) {
    withRecord(prhs, [&](const Record& record) { plhs[0] = number(record.numSamplesProcessed); });
}

void answerResetCachedNumSamplesProcessed(nbArray** plhs, const nbArray** prhs) {
    withRecord(prhs, [&](Record& record) {
        plhs[0] = nbCreateLogicalScalar(record.resetCachedNumSamplesProcessed);
        record.resetCachedNumSamplesProcessed = false;
    });
}

void answerNumUpdatesProcessed(nbArray** plhs, const nbArray** prhs) {
    withRecord(prhs, [&](const Record& record) { plhs[0] = number(record.numUpdatesProcessed); });
}

}  // namespace dspwavedecks

#pragma once

#include <vector>

#include "OptionReaders.h"
#include "spectrumEstimatorMetaDataStruct.h"

namespace dspwavedecks {

/// Channels of a signal, complex ones counted once, from the count of the host, which tells real and imaginary parts
/// apart.
inline unsigned long countChannels(int hostCount, bool isComplex) {
    return hostCount <= 0 ? 0 : static_cast<unsigned long>(isComplex ? hostCount / 2 : hostCount);
}

/// Where the spectra lie in a frame: blocks of one length, first the grid, then one for each channel. A spectrum is the
/// last stretch of its channel's block.
class SpectrumFrameLayout {
public:
    /// inputLength  doubles in the frame
    /// numChannels  complex ones counted once
    SpectrumFrameLayout(unsigned long inputLength, unsigned long numFrequencyBlocks, unsigned long numChannels)
        : numFrequencyBlocks(numFrequencyBlocks), numChannels(numChannels) {
        const unsigned long numBlocks = numFrequencyBlocks + numChannels;
        blockLength = numBlocks == 0 ? 0 : inputLength / numBlocks;
    }

    unsigned long getBlockLength() const { return blockLength; }
    /// One past the last point of a channel's block.
    unsigned long endOf(long channel) const {
        return blockLength + blockLength * (numFrequencyBlocks + static_cast<unsigned long>(channel));
    }
    /// Whether the channel is there, with room for a spectrum of that length.
    bool holdsSpectrum(long channel, unsigned long length) const {
        return channel >= 0 && static_cast<unsigned long>(channel) < numChannels && length > 0 && length <= blockLength;
    }

private:
    unsigned long numFrequencyBlocks;
    unsigned long numChannels;
    unsigned long blockLength;
};

/// The choice between the spectrum in the frame and a hold trace.
class MeasuredTrace {
public:
    /// "normalTraceData", "maxHoldTraceData" and "minHoldTraceData", each if present.
    void readOptions(const PropertyList& list);

    /// The spectrum in the frame is measured.
    bool isNormal() const { return normalTraceData; }
    /// The hold trace that is measured otherwise: the maximum if it is chosen, else the minimum, chosen or not.
    const std::vector<double>& selectHold(const spectrumEstimatorMetaDataStruct& record) const {
        return maxHoldTraceData ? record.maxHoldTrace : record.minHoldTrace;
    }

    /// Range of a channel in the hold traces, which have no grid at their head. Channels count from 0 over all signals:
    /// for a later signal that is meant to reach into the traces of the first.
    /// Empty if there is no such channel.
    static std::vector<unsigned long> rangeInHold(const std::vector<double>& hold, long channel, unsigned long length);

private:
    bool normalTraceData = true;
    bool maxHoldTraceData = false;
    bool minHoldTraceData = false;  // stored only
};

}  // namespace dspwavedecks

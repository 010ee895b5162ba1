#pragma once

#include <cstddef>
#include <vector>

#include "FrequencyDataStrategy.h"

namespace dspwavedecks {

/// Client messages of the spectra of a block-diagram simulation. Data is what the aggregator lays out, of one output or
/// of several joined: a header with the number of spectra for each slot, then for each channel the slots, of the
/// simulation's frame size each. An output's spectra stand one behind the other, the newest last, and zeros fill its
/// last slot up. Behind the data signals may stand input ports, of which no message tells.
///
/// A buffer whose header does not fit it is shown as a signal without points.
class BFFrequencyDataStrategy : public FrequencyDataStrategy {
public:
    BFFrequencyDataStrategy();
    ~BFFrequencyDataStrategy() override;

    bool isChannelDataValid(const Buffers& data, int signal) const override;
    void computeCurrentInputMetrics(const Buffers& data, int signal, int numChannels, int framePoints) override;
    /// The estimator's frequencies: the buffer holds none.
    void packageFrequencyPocoArray(const Buffers& data, int signal, ArrayPointer& frequencyArray) override;
    void packageInterpFrequencyPocoArray(const Buffers& data, int signal, ArrayPointer& frequencyArray) override;
    void computeSpectrogramDataStartAndEndIdx(int channel, int line, int framePoints) override;
    void computeSpectrumDataStartAndEndIdx(int channel, int framePoints) override;
    /// The signals without the input ports behind them; none for a client that has gone.
    int getNumDataSignals() override;

private:
    void forgetMetrics();
    /// Finds the gaps behind the lines; false if the header tells of a spectrum for which it has no slot.
    bool computeLineGaps(const std::vector<double>& buffer, int framePoints);

    // Scratch of one update.
    int blockLength = 0;        ///< slots of the buffer
    int channelPadding = 0;     ///< points of a channel that belong to no spectrum
    int spectrumPadding = 0;    ///< the same for one spectrum
    std::vector<int> lineGaps;  ///< padding behind each line, the newest first, with that behind the newer ones
};

}  // namespace dspwavedecks

#pragma once

#include <cstddef>
#include <vector>

#include "SpectrumEstimatorFilter.h"

namespace dspwavedecks {

/// The spectrum estimator of a block-diagram simulation. A frame begins with a head, one value for each simulation
/// frame in hand; behind the data signals stand the input ports that carry the frequency vector, the RBW and the VBW,
/// in this order, as far as they are in use. Frame sizes may change while the frame period stays.
///
/// The head is there when the client runs through the streaming plug-in layer. Each raw channel then holds
/// head * frameSize points.
class BFSpectrumEstimatorFilter : public SpectrumEstimatorFilter {
public:
    BFSpectrumEstimatorFilter();
    ~BFSpectrumEstimatorFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    bool hostFlagB() override { return false; }
    void setPropertiesOnSetup(const PropertyList& list) override;
    /// Another frame size in the same frame period is another sample rate; the samples held are kept.
    void onInputSizeChange(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;
    /// Points of each channel in the frame in hand, behind the head.
    unsigned long getNumPointsPerChannel(const int& signal) override;

    /// Signals without the input ports behind them.
    int getNumDataSignals() const;
    /// For levels below full scale: takes the largest value of a floating point signal as its full scale, in the first
    /// frame that has all data signals.
    void updateInputRange(const double* data, int signal);

private:
    /// The largest value; of a complex signal the largest magnitude. 1 if it is not above 0, where levels have no
    /// sense.
    double findInputRange(const double* data, int signal) const;
    void takePortParameters();

    // Options.
    std::vector<double> sampleTime;  ///< of each signal, s: the frame period
    bool inputPortFrequencyVector = false;
    bool inputPortRBW = false;
    bool inputPortVBW = false;

    // State.
    std::vector<double> inputRange;  ///< of each signal; 1 before it is known
    bool inputRangeKnown = false;    ///< of all signals

    // Scratch.
    std::vector<int> bfFrameSize;      ///< of each signal, points of a channel in the frame in hand
    unsigned long dataStartIndex = 0;  ///< where the data of the frame in hand begin
    unsigned long dataEndIndex = 0;    ///< its size
};

}  // namespace dspwavedecks

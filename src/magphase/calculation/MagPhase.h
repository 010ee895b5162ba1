#pragma once

#include <vector>

namespace dspwavedecks {

/// Magnitude and phase in degrees of the channels of one frame.
///
/// A frame is channel-major: n times, then n points of each channel. A complex frame of c channels holds c / 2 channels
/// of real parts and then c / 2 channels of imaginary parts.
class MagPhase {
public:
    MagPhase() = default;
    MagPhase(const unsigned long& numChannels, const bool& isInputComplex);

    /// Channels of the frame, real and imaginary parts counted separately.
    void setNumChannels(const unsigned long& channels) { numChannels = channels; }
    void setIsInputComplex(const bool& isComplex) { isInputComplex = isComplex; }
    [[nodiscard]] unsigned long getNumChannels() const { return numChannels; }
    [[nodiscard]] bool getIsInputComplex() const { return isInputComplex; }

    /// Magnitude and phase of every point; the times are copied. The phase is not unwrapped.
    ///   complex:  magnitude = sqrt(re^2 + im^2), phase = atan2(im, re) * 180 / pi
    ///   real:     magnitude = |x|, exact over the whole range of doubles; phase 0 for x >= 0 and zeros of either sign,
    ///             180 for x < 0, NaN for NaN
    /// in   [n * (c + 1)] frame
    /// out  sized by the caller: complex [n * (c + 1)] magnitudes in the place of the real parts and phases in the
    /// place
    ///      of the imaginary ones; real [n * (2 * c + 1)] times, c channels of magnitudes, c channels of phases.
    ///      Must not overlap the input.
    void computeMagPhase(const double* in, std::vector<double>& out, const unsigned long& n);

private:
    // Options.
    unsigned long numChannels = 1;
    bool isInputComplex = false;

    // Derived.
    double pi = 3.141592653589793;
};

}  // namespace dspwavedecks

#pragma once

#include <complex>
#include <cstddef>
#include <memory>

#include "fftbridge.h"

namespace dspwavedecks {

/// Input and output buffers for forward transforms of several channels at once, one channel after the other, with the
/// plans that run on them. The input may have room for some segments that are made in one go.
class SpectrumTransform {
public:
    /// Makes both buffers anew for `channels` transforms of `length` points, the input for `segments` of them, and
    /// fills them with zeros. Old buffers are given back; plans of other lengths stay at hand.
    void allocate(std::size_t channels, std::size_t length, std::size_t segments = 1);
    /// Fills both buffers with zeros.
    void reset();

    /// Transforms `channels` channels of a segment, from channel `first` on and at most as many as there are; the first
    /// of them is channel 0 of the output.
    void execute(std::size_t first, std::size_t channels, std::size_t segment = 0);

    std::size_t length() const { return points; }
    std::size_t segments() const { return numSegments; }
    /// [length()] complex samples of a channel below the count allocated, the real and imaginary parts in turn.
    double* input(std::size_t channel, std::size_t segment = 0) {
        return in.get() + segmentStride() * segment + 2 * points * channel;
    }
    /// Doubles from a segment to the next, whole cache lines, and never a power of two: a bank that writes segments
    /// side by side would have them all in the same few sets of the first cache.
    std::size_t segmentStride() const { return (2 * numChannels * points + 7) / 8 * 8 + 136; }
    const double* output(std::size_t channel) const { return out.get() + 2 * points * channel; }

private:
    struct Free {
        void operator()(double* buffer) const noexcept { fftbridge::fftwApi::free(buffer); }
    };
    using Buffer = std::unique_ptr<double[], Free>;

    static Buffer makeBuffer(std::size_t count);

    // State.
    std::size_t numChannels = 0;
    std::size_t points = 0;
    std::size_t numSegments = 1;
    fftbridge::FftContext context;
    fftbridge::FftPlanCache planCache;

    // Scratch.
    Buffer in;
    Buffer out;
};

}  // namespace dspwavedecks

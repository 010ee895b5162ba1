#include "SpectrumTransform.h"

#include <algorithm>
#include <limits>
#include <new>

namespace dspwavedecks {

SpectrumTransform::Buffer SpectrumTransform::makeBuffer(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(double)) {
        throw std::bad_array_new_length();
    }
    return Buffer(static_cast<double*>(fftbridge::fftwApi::malloc(count * sizeof(double))));
}

void SpectrumTransform::allocate(std::size_t channels, std::size_t length, std::size_t segments) {
    if (!in || channels != numChannels || length != points || segments != numSegments) {
        in.reset();
        out.reset();
        numChannels = channels;
        points = length;
        numSegments = segments;
        try {
            in = makeBuffer(segmentStride() * segments);
            out = makeBuffer(segmentStride());
        } catch (...) {
            in.reset();
            out.reset();
            numChannels = 0;
            throw;
        }
    }
    reset();
}

void SpectrumTransform::reset() {
    std::fill_n(in.get(), segmentStride() * numSegments, 0.0);
    std::fill_n(out.get(), segmentStride(), 0.0);
}

void SpectrumTransform::execute(std::size_t first, std::size_t channels, std::size_t segment) {
    const std::size_t transforms = std::min(channels, numChannels - std::min(first, numChannels));
    constexpr int forward = -1;
    constexpr bool measureFirst = false;
    fftbridge::interleavedFFT1D<double, 2>(context, planCache, input(first, segment), out.get(), points, transforms,
                                           forward, measureFirst);
}

}  // namespace dspwavedecks

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

void SpectrumTransform::allocate(std::size_t channels, std::size_t length) {
    const std::size_t count = 2 * channels * length;
    if (channels != numChannels || length != points) {
        in.reset();
        out.reset();
        numChannels = 0;
        in = makeBuffer(count);
        out = makeBuffer(count);
        numChannels = channels;
        points = length;
    }
    reset();
}

void SpectrumTransform::reset() {
    const std::size_t count = 2 * numChannels * points;
    std::fill_n(in.get(), count, 0.0);
    std::fill_n(out.get(), count, 0.0);
}

void SpectrumTransform::execute(std::size_t channels) {
    const std::size_t transforms = std::min(channels, numChannels);
    constexpr int forward = -1;
    constexpr bool measureFirst = false;
    fftbridge::interleavedFFT1D<double, 2>(context, planCache, in.get(), out.get(), points, transforms, forward,
                                           measureFirst);
}

}  // namespace dspwavedecks

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "InstructionSet.h"
#include "SpectrumEstimator.h"
#include "VectorMath.h"

// Zoom: a complex band-pass around the centre of the span, and of its output every d-th sample. The band is not mixed
// down; at the rate Fs' = Fs / d it is found at its own frequency, since the span fits between -Fs' / 2 and Fs' / 2.
//   y[m] = sum over n < 48 d of h[n] exp(j 2 pi fc / Fs n) x[m d - n]
// The output that begins a segment takes the segment's first sample as its newest one.

namespace dspwavedecks {

namespace {

using Complex = std::complex<double>;

constexpr std::size_t halfTapsPerBranch = 24;

/// Four lanes are one register with AVX2 and two with SSE2; two sets of them hide the latency of the additions.
using Lanes = double __attribute__((vector_size(32)));

/// Running sums over samples times real taps, [0] and [1], and times imaginary taps, [2] and [3].
struct Sums {
    Lanes lanes[4];
};

/// Adds n products, n a multiple of 8.
[[gnu::always_inline]] inline void accumulateInto(Sums& sums, const double* x, const double* re, const double* im,
                                                  std::size_t n) {
    Sums local = sums;
    for (std::size_t i = 0; i < n; i += 8) {
        Lanes samples[2];
        Lanes realTaps[2];
        Lanes imaginaryTaps[2];
        __builtin_memcpy(samples, x + i, sizeof samples);
        __builtin_memcpy(realTaps, re + i, sizeof realTaps);
        __builtin_memcpy(imaginaryTaps, im + i, sizeof imaginaryTaps);
        local.lanes[0] += samples[0] * realTaps[0];
        local.lanes[1] += samples[1] * realTaps[1];
        local.lanes[2] += samples[0] * imaginaryTaps[0];
        local.lanes[3] += samples[1] * imaginaryTaps[1];
    }
    sums = local;
}

using Accumulate = void (*)(Sums&, const double*, const double*, const double*, std::size_t);

void accumulatePortable(Sums& sums, const double* x, const double* re, const double* im, std::size_t n) {
    accumulateInto(sums, x, re, im, n);
}

#if defined(__x86_64__)
[[gnu::target("avx2,fma")]] void accumulateAvx2(Sums& sums, const double* x, const double* re, const double* im,
                                                std::size_t n) {
    accumulateInto(sums, x, re, im, n);
}
#endif

Accumulate accumulateForThisMachine() {
#if defined(__x86_64__)
    if (isSupported(InstructionSet::avx2)) {
        return accumulateAvx2;
    }
#endif
    return accumulatePortable;
}

/// The sum of products that the lanes make up. With complex samples the lanes are real and imaginary parts in turn.
Complex total(const Sums& sums, bool complexSamples) {
    const Lanes a = sums.lanes[0] + sums.lanes[1];
    const Lanes b = sums.lanes[2] + sums.lanes[3];
    if (!complexSamples) {
        return {(a[0] + a[1]) + (a[2] + a[3]), (b[0] + b[1]) + (b[2] + b[3])};
    }
    return {(a[0] + a[2]) - (b[1] + b[3]), (a[1] + a[3]) + (b[0] + b[2])};
}

/// Points of a band-pass, `count` of them, each from n taps over samples that begin `step` doubles later.
void filter(const double* x, std::size_t step, std::size_t count, const std::array<AlignedVector<double>, 2>& taps,
            bool complexSamples, Complex* points) {
    static const Accumulate accumulate = accumulateForThisMachine();
    constexpr std::size_t group = 16;  // outputs that use a stretch of taps before it leaves the first cache
    constexpr std::size_t stretch = 512;
    const std::size_t n = taps[0].size();
    for (std::size_t first = 0; first < count; first += group) {
        const std::size_t outputs = std::min(group, count - first);
        Sums sums[group] = {};
        for (std::size_t tap = 0; tap < n; tap += stretch) {
            for (std::size_t m = 0; m < outputs; ++m) {
                accumulate(sums[m], x + (first + m) * step + tap, taps[0].data() + tap, taps[1].data() + tap,
                           std::min(stretch, n - tap));
            }
        }
        for (std::size_t m = 0; m < outputs; ++m) {
            points[first + m] = total(sums[m], complexSamples);
        }
    }
}

/// The samples of a channel as doubles, whichever kind they are.
const double* samplesOf(const SpectrumBuffer& buffer, std::size_t channel) {
    return buffer.holdsComplexSamples() ? reinterpret_cast<const double*>(buffer.run<Complex>(channel))
                                        : buffer.run<double>(channel);
}

}  // namespace

void SpectrumEstimator::allocateZoomFFTResources() {
    zoomStarts.assign(totalNumChannels, flushSpectrumBuffer ? ZoomStart::undecided : ZoomStart::done);
    if (!isZoomInUse()) {
        return;
    }
    designMultirateFIR(zoomFilter, zoomDecimationFactor, halfTapsPerBranch, firStopbandAttenuation);
    rotateZoomFilter();
    const std::size_t width = spectrumBuffer->holdsComplexSamples() ? 2 : 1;
    zoomState.history.assign(zoomHistoryLength() * width * totalNumChannels, 0.0);
    zoomState.lastPoints.assign(numOverlapSamples * totalNumChannels, Complex{});
    zoomOutput.assign(actualSegmentLength * totalNumChannels, Complex{});
}

/// Each tap turns by its own number in the prototype. The last tap comes first, so that samples and taps run the same
/// way; for complex samples every tap stands twice, once for each part.
void SpectrumEstimator::rotateZoomFilter() {
    const double fc =
        isFrequencySpanSpanAndCenterFrequency() ? centerFrequency : (startFrequency + stopFrequency) * 0.5;
    const std::size_t d = zoomDecimationFactor;
    const std::size_t n = zoomFilter.size();
    const std::size_t width = spectrumBuffer->holdsComplexSamples() ? 2 : 1;
    for (auto& taps : zoomMixedFilter) {
        taps.resize(n * width);
    }
    for (std::size_t tap = 0; tap < n; ++tap) {
        const double value = zoomFilter[tap % d * 2 * halfTapsPerBranch + tap / d];
        // Whole turns are taken off first: the phase of a late tap keeps its digits.
        const double turns = std::fmod(fc * static_cast<double>(tap), sampleRate) / sampleRate;
        const double phase = 2.0 * std::numbers::pi * turns;
        for (std::size_t part = 0; part < width; ++part) {
            zoomMixedFilter[0][(n - 1 - tap) * width + part] = value * std::cos(phase);
            zoomMixedFilter[1][(n - 1 - tap) * width + part] = value * std::sin(phase);
        }
    }
}

/// Without zeros in the place of the first overlap, those points have to come from samples too.
void SpectrumEstimator::beginZoomChannel(const std::size_t& bufferIndex) {
    if (!isZoomInUse() || zoomStarts[bufferIndex] != ZoomStart::undecided) {
        return;
    }
    const bool zeros = spectrumBuffer->getZerosInFirstSegment() || numOverlapSamples == 0;
    zoomStarts[bufferIndex] = zeros ? ZoomStart::done : ZoomStart::waitingForOverlap;
}

void SpectrumEstimator::takeZoomLeadIn(const std::size_t& bufferIndex) {
    const std::size_t samples = numOverlapSamples * zoomDecimationFactor;
    if (!isZoomLeadInPending(bufferIndex) || spectrumBuffer->size(bufferIndex) < samples) {
        return;
    }
    decimate(bufferIndex, 0, samples, zoomState.lastPoints.data() + bufferIndex * numOverlapSamples);
    keepZoomHistory(bufferIndex, 0, samples);
    spectrumBuffer->drop(bufferIndex, samples);
    zoomStarts[bufferIndex] = ZoomStart::done;
}

bool SpectrumEstimator::isZoomLeadInPending(const std::size_t& bufferIndex) const {
    return isZoomInUse() && bufferIndex < zoomStarts.size() && zoomStarts[bufferIndex] == ZoomStart::waitingForOverlap;
}

/// Points of a segment that come from the update before.
std::size_t SpectrumEstimator::getNumZoomPointsBefore(const std::size_t& bufferIndex) const {
    return isZoomLeadInPending(bufferIndex) ? 0 : numOverlapSamples;
}

/// samples / d points from the samples of a channel from `offset` on, with what the channel remembers before them.
void SpectrumEstimator::decimate(const std::size_t& bufferIndex, std::size_t offset, std::size_t samples,
                                 std::complex<double>* points) {
    const bool complexSamples = spectrumBuffer->holdsComplexSamples();
    const std::size_t width = complexSamples ? 2 : 1;
    const std::size_t d = zoomDecimationFactor;
    const std::size_t before = zoomHistoryLength();
    const std::size_t count = samples / d;
    const double* x = samplesOf(*spectrumBuffer, bufferIndex) + offset * width;
    const double* history = zoomState.history.data() + bufferIndex * before * width;

    // The first points reach back before the segment; the others read it in place.
    const std::size_t inHead = std::min(count, (before + d - 1) / d);
    zoomHead.resize(2 * before * width);
    std::copy_n(history, before * width, zoomHead.begin());
    std::copy_n(x, std::min(samples, before) * width, zoomHead.begin() + static_cast<std::ptrdiff_t>(before * width));
    filter(zoomHead.data(), d * width, inHead, zoomMixedFilter, complexSamples, points);
    if (count > inHead) {
        filter(x + (inHead * d - before) * width, d * width, count - inHead, zoomMixedFilter, complexSamples,
               points + inHead);
    }
}

void SpectrumEstimator::keepZoomHistory(const std::size_t& bufferIndex, std::size_t offset, std::size_t samples) {
    const std::size_t width = spectrumBuffer->holdsComplexSamples() ? 2 : 1;
    const std::size_t kept = zoomHistoryLength() * width;
    const std::size_t fresh = std::min(samples * width, kept);
    const double* end = samplesOf(*spectrumBuffer, bufferIndex) + (offset + samples) * width;
    double* history = zoomState.history.data() + bufferIndex * kept;
    std::copy(history + fresh, history + kept, history);
    std::copy_n(end - fresh, fresh, history + (kept - fresh));
}

void SpectrumEstimator::computeZoomSegment(const int& signal, const std::size_t& channels, const std::size_t& segment) {
    const std::size_t whole = spectrumBuffer->getSegmentLength();
    const std::size_t offset = segment * whole;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t index = getChannelBufferIdx(signal, channel);
        const std::size_t held = spectrumBuffer->size(index);
        const std::size_t shared = getNumZoomPointsBefore(index);
        const std::size_t samples =
            std::min({whole, held - std::min(offset, held), (actualSegmentLength - shared) * zoomDecimationFactor});
        Complex* points = zoomOutput.data() + index * actualSegmentLength;
        Complex* lastPoints = zoomState.lastPoints.data() + index * numOverlapSamples;
        std::copy_n(lastPoints, shared, points);
        decimate(index, offset, samples, points + shared);
        std::fill(points + shared + samples / zoomDecimationFactor, points + actualSegmentLength, Complex{});
        if (samples == whole) {
            std::copy_n(points + (actualSegmentLength - numOverlapSamples), numOverlapSamples, lastPoints);
            keepZoomHistory(index, offset, samples);
        }
    }
}

void SpectrumEstimator::addZoomFFTWindowedDataToFFTBuffer(const SegmentPart& part) {
    const std::size_t count = std::min({transientSegmentLength, actualFFTLength, windowData.size()});
    for (std::size_t channel = part.first; channel < part.end; ++channel) {
        const Complex* points = zoomOutput.data() + getChannelBufferIdx(part.signal, channel) * actualSegmentLength;
        double* in = transform.input(inputPlace(part, channel), inputSegment(part.segment));
        vectormath::windowComplex(reinterpret_cast<const double*>(points), windowData.data(), in, count);
        std::fill(in + 2 * count, in + 2 * actualFFTLength, 0.0);
    }
}

}  // namespace dspwavedecks

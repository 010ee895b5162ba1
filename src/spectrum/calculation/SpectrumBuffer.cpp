#include "SpectrumBuffer.h"

#include <algorithm>
#include <cmath>

namespace dspwavedecks {

namespace {

/// Samples as they stand in the frame of a real signal.
struct RealSource {
    const double* values;
    void copy(std::size_t first, std::size_t count, double* to) const { std::copy_n(values + first, count, to); }
};

/// A real signal beside complex ones.
struct RealAsComplexSource {
    const double* values;
    void copy(std::size_t first, std::size_t count, std::complex<double>* to) const {
        std::transform(values + first, values + first + count, to,
                       [](double x) { return std::complex<double>(x, 0.0); });
    }
};

/// A complex signal, whose frame holds all real parts before all imaginary parts.
struct ComplexSource {
    const double* re;
    const double* im;
    void copy(std::size_t first, std::size_t count, std::complex<double>* to) const {
        double* parts = reinterpret_cast<double*>(to);
        for (std::size_t i = 0; i < count; ++i) {
            parts[2 * i] = re[first + i];
            parts[2 * i + 1] = im[first + i];
        }
    }
};

/// Grows by doubling, so that a run that is appended to for long is not copied with every frame.
template <class Sample>
void reserveForAppending(SampleVector<Sample>& run, std::size_t needed) {
    if (needed > run.capacity()) {
        run.reserve(std::max(needed, 2 * run.capacity()));
    }
}

/// Samples in the open segment, 0 without segments. Mostly there is no whole one before it, and no need to divide.
std::size_t openSamples(std::size_t held, std::size_t segmentLength) {
    return held < segmentLength ? held : segmentLength == 0 ? 0 : held % segmentLength;
}

template <class Sample, class Source>
void appendSamples(SampleVector<Sample>& run, const Source& source, std::size_t first, std::size_t count) {
    const std::size_t held = run.size();
    run.resize(held + count);
    source.copy(first, count, run.data() + held);
}

}  // namespace

SpectrumBuffer::SpectrumBuffer(const std::size_t& numSignals, const std::size_t& numChannels, const bool& isComplex,
                               const std::size_t& segmentLength, const double& overlapPercent)
    : numSignals(numSignals),
      numChannels(numChannels),
      isComplex(isComplex),
      segmentLength(segmentLength),
      overlapPercent(overlapPercent) {}

void SpectrumBuffer::setSegmentLength(const std::size_t& value) {
    if (value == segmentLength) {
        return;
    }
    segmentLength = value;
    computeNumOverlapSamples();
}

void SpectrumBuffer::setOverlapPercent(const double& value) {
    if (value == overlapPercent) {
        return;
    }
    overlapPercent = value;
    computeNumOverlapSamples();
}

std::size_t SpectrumBuffer::computeNumOverlapSamples(const std::size_t& segmentLength, const double& overlapPercent) {
    if (segmentLength == 0 || std::isnan(overlapPercent)) {
        return 0;
    }
    const double exact = std::clamp(overlapPercent, 0.0, 100.0) * static_cast<double>(segmentLength) / 100;
    const double above = std::ceil(exact);
    const double below = std::floor(exact);
    const double nearest = std::abs(exact - above) < std::abs(exact - below) ? above : below;
    return std::min(static_cast<std::size_t>(nearest), segmentLength - 1);
}

void SpectrumBuffer::computeNumOverlapSamples() {
    numOverlapSamples = computeNumOverlapSamples(segmentLength, overlapPercent);
}

void SpectrumBuffer::setup(const std::size_t& signals, const std::size_t& channels, const bool& complex) {
    numSignals = signals;
    numChannels = channels;
    isComplex = complex;
    if (isComplex) {
        store = Runs<std::complex<double>>(numChannels);
    } else {
        store = Runs<double>(numChannels);
    }
    computeNumOverlapSamples();
    numSignals = 1;  // the number of signals plays no part here; its readers are told one
    segmentsPerBlock = 1;
    zerosInFirstSegment = true;
}

void SpectrumBuffer::addData(const double* data, const std::size_t& channel, const std::size_t& numSamples,
                             const std::size_t& numChannelsOfSignal, const bool& dataIsComplex) {
    addData(data, channel, Slice{0, numSamples, numSamples}, numChannelsOfSignal, dataIsComplex);
}

void SpectrumBuffer::addData(const double* data, const std::size_t& channel, const Slice& slice,
                             const std::size_t& numChannelsOfSignal, const bool& dataIsComplex) {
    const double* re = data + slice.first;
    if (auto* real = std::get_if<Runs<double>>(&store)) {
        append((*real)[channel], RealSource{re}, slice.count);
        return;
    }
    auto& run = std::get<Runs<std::complex<double>>>(store)[channel];
    if (dataIsComplex) {
        append(run, ComplexSource{re, re + numChannelsOfSignal * slice.frameSize}, slice.count);
    } else {
        append(run, RealAsComplexSource{re}, slice.count);
    }
}

void SpectrumBuffer::addFrame(const double* data, std::size_t first, std::size_t numSamples,
                              std::size_t numChannelsOfSignal, bool dataIsComplex) {
    if (auto* real = std::get_if<Runs<double>>(&store)) {
        for (std::size_t channel = 0; channel < numChannelsOfSignal; ++channel) {
            append((*real)[first + channel], RealSource{data + channel * numSamples}, numSamples);
        }
        return;
    }
    for (std::size_t channel = 0; channel < numChannelsOfSignal; ++channel) {
        addData(data + channel * numSamples, first + channel, numSamples, numChannelsOfSignal, dataIsComplex);
    }
}

void SpectrumBuffer::continueFrom(const double* shared, const std::size_t& channel) {
    auto& run = std::get<Runs<double>>(store)[channel];
    run.clear();
    appendSamples(run, RealSource{shared}, 0, numOverlapSamples);
}

/// Begins a segment with what it shares with the one before, or with zeros if there is none.
template <class Sample>
void SpectrumBuffer::openSegment(SampleVector<Sample>& run) const {
    const std::size_t held = run.size();
    run.resize(held + numOverlapSamples);
    if (held == 0) {
        std::fill(run.begin(), run.end(), Sample{});
    } else {
        const std::size_t shared = std::min(numOverlapSamples, held);
        std::copy_n(run.data() + (held - shared), shared, run.data() + held);
    }
}

template <class Sample, class Source>
void SpectrumBuffer::append(SampleVector<Sample>& run, const Source& source, std::size_t numSamples) const {
    // Mostly a frame stays within the open segment.
    const std::size_t grown = run.size() + numSamples;
    if (!run.empty() && grown < segmentLength && grown <= run.capacity()) {
        appendSamples(run, source, 0, numSamples);
    } else {
        appendInSegments(run, source, numSamples);
    }
}

template <class Sample, class Source>
[[gnu::noinline]] void SpectrumBuffer::appendInSegments(SampleVector<Sample>& run, const Source& source,
                                                        std::size_t numSamples) const {
    const std::size_t L = segmentLength;
    const std::size_t hop = L > numOverlapSamples ? L - numOverlapSamples : 1;
    std::size_t position = 0;
    const std::size_t partial = openSamples(run.size(), L);
    const std::size_t openings = numSamples < hop ? 2 : numSamples / hop + 2;
    reserveForAppending(run, run.size() + numSamples + openings * numOverlapSamples);
    if (partial != 0 || (run.empty() && !zerosInFirstSegment)) {
        position = std::min(numSamples, L - partial);
        appendSamples(run, source, 0, position);
    }
    for (; numSamples - position >= hop; position += hop) {
        openSegment(run);
        appendSamples(run, source, position, hop);
    }
    // The overlap of the next segment goes in at once, so that the run ends in an open segment unless there is none.
    if (run.empty() || (L != 0 && openSamples(run.size(), L) == 0)) {
        openSegment(run);
    }
    appendSamples(run, source, position, numSamples - position);
}

bool SpectrumBuffer::isMadeFor(const std::size_t& channels, const bool& complex) const {
    const std::size_t held = std::visit([](const auto& runs) { return runs.size(); }, store);
    return held == channels && holdsComplexSamples() == complex;
}

std::size_t SpectrumBuffer::getNumSegments(const std::size_t& channel) const {
    const std::size_t held = size(channel);
    return held < segmentLength || segmentLength == 0 ? 0 : held / segmentLength;
}

bool SpectrumBuffer::isReady() const {
    return size(0) != 0 && getNumSegments(0) >= segmentsPerBlock;
}

void SpectrumBuffer::flush() {
    std::visit(
        [](auto& runs) {
            for (auto& run : runs) {
                run.clear();
            }
        },
        store);
}

void SpectrumBuffer::drop(const std::size_t& channel, const std::size_t& numSamples) {
    std::visit(
        [&](auto& runs) {
            if (channel >= runs.size()) {
                return;
            }
            auto& run = runs[channel];
            const std::size_t dropped = std::min(numSamples, run.size());
            std::copy(run.begin() + static_cast<std::ptrdiff_t>(dropped), run.end(), run.begin());
            run.resize(run.size() - dropped);
        },
        store);
}

void SpectrumBuffer::clear() {
    if (segmentsPerBlock == 0) {
        return;
    }
    const std::size_t channels = std::visit([](const auto& runs) { return runs.size(); }, store);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t whole = getNumSegments(channel) / segmentsPerBlock * segmentsPerBlock;
        drop(channel, whole * segmentLength);
    }
}

}  // namespace dspwavedecks

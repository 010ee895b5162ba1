#pragma once

#include <complex>
#include <cstddef>
#include <variant>
#include <vector>

#include "SampleVector.h"

namespace dspwavedecks {

/// Turns frames into equally long, overlapping segments, channel by channel.
///
/// Each channel is one run of samples in which segment k is samples k * L to (k + 1) * L - 1, L being the segment
/// length: what two segments share is stored twice, so that a segment is read in place. The channels of all signals
/// lie side by side. All samples are real, or all are complex as soon as one signal is.
class SpectrumBuffer {
    template <class Sample>
    using Runs = std::vector<SampleVector<Sample>>;

public:
    SpectrumBuffer() = default;
    /// Stores the values; the overlap in samples follows with the first setter that changes it, or with `setup`.
    SpectrumBuffer(const std::size_t& numSignals, const std::size_t& numChannels, const bool& isComplex,
                   const std::size_t& segmentLength, const double& overlapPercent);

    void setNumSignals(const std::size_t& value) { numSignals = value; }
    void setNumChannels(const std::size_t& value) { numChannels = value; }
    void setIsComplex(const bool& value) { isComplex = value; }
    void setSegmentLength(const std::size_t& value);
    void setOverlapPercent(const double& value);
    /// Whole segments that `isReady` waits for and `clear` drops at a time.
    void setSegmentsPerBlock(const std::size_t& value) { segmentsPerBlock = value; }
    /// Whether the first segment of an empty channel begins with zeros in the place of the overlap.
    void setZerosInFirstSegment(const bool& value) { zerosInFirstSegment = value; }

    std::size_t getNumSignals() const { return numSignals; }
    std::size_t getNumChannels() const { return numChannels; }
    std::size_t getSegmentLength() const { return segmentLength; }
    double getOverlapPercent() const { return overlapPercent; }
    std::size_t getNumOverlapSamples() const { return numOverlapSamples; }
    bool getZerosInFirstSegment() const { return zerosInFirstSegment; }

    /// Samples that neighbouring segments share:  overlapPercent * L / 100, rounded, a tie to the smaller number, and
    /// at most L - 1, so that a segment always moves on. A percentage outside 0 to 100 counts as the nearer end, NaN
    /// as 0.
    static std::size_t computeNumOverlapSamples(const std::size_t& segmentLength, const double& overlapPercent);
    void computeNumOverlapSamples();

    /// Empties the store and shapes it for `numChannels` runs. One segment a block and zeros at the start are set anew.
    void setup(const std::size_t& numSignals, const std::size_t& numChannels, const bool& isComplex);

    /// Appends one frame of one channel.
    /// data                 [numSamples] the channel's samples; of complex data the real parts, the imaginary parts
    ///                      following numChannelsOfSignal * numSamples values later
    /// channel              below getNumChannels()
    /// A failed allocation leaves the channel as it was.
    void addData(const double* data, const std::size_t& channel, const std::size_t& numSamples,
                 const std::size_t& numChannelsOfSignal, const bool& dataIsComplex);

    /// Part of a frame: `count` samples from `first` on, of the `frameSize` that the frame has in each channel.
    struct Slice {
        std::size_t first;
        std::size_t count;
        std::size_t frameSize;
    };
    /// Appends a part of a frame of one channel, `data` being that of the whole frame.
    void addData(const double* data, const std::size_t& channel, const Slice& slice,
                 const std::size_t& numChannelsOfSignal, const bool& dataIsComplex);

    /// Appends one frame to each channel of a signal; `first` is the signal's first channel. What adding them one by
    /// one does.
    void addFrame(const double* data, std::size_t first, std::size_t numSamples, std::size_t numChannelsOfSignal,
                  bool dataIsComplex);

    /// Puts the overlap of the next segment in the place of what a real channel holds, for segments that were read
    /// elsewhere: `shared` holds the last getNumOverlapSamples() samples of them.
    void continueFrom(const double* shared, const std::size_t& channel);

    /// Whole segments held; 0 for a channel that is not there.
    std::size_t getNumSegments(const std::size_t& channel) const;
    /// Samples held, the overlap counted twice; 0 for a channel that is not there.
    std::size_t size(const std::size_t& channel) const {
        const auto sizeOf = [channel](const auto& runs) { return channel < runs.size() ? runs[channel].size() : 0; };
        const auto* const real = std::get_if<Runs<double>>(&store);
        return real != nullptr ? sizeOf(*real) : sizeOf(std::get<Runs<std::complex<double>>>(store));
    }
    /// Whether channel 0 holds a whole block; the other channels are not looked at.
    bool isReady() const;

    /// Whether the store is that of a `setup` for these channels.
    bool isMadeFor(const std::size_t& channels, const bool& complex) const;
    bool holdsComplexSamples() const { return std::holds_alternative<Runs<std::complex<double>>>(store); }
    /// The run of a channel, `size(channel)` samples; null if the store holds the other kind.
    template <class Sample>
    const Sample* run(const std::size_t& channel) const {
        const auto* runs = std::get_if<Runs<Sample>>(&store);
        return runs != nullptr && channel < runs->size() ? (*runs)[channel].data() : nullptr;
    }

    /// Empties every channel; the memory is kept.
    void flush();
    /// Drops the first samples of a channel, at most all.
    void drop(const std::size_t& channel, const std::size_t& numSamples);
    /// Drops the whole blocks of every channel; an incomplete block stays, and with it the overlap.
    void clear();

private:
    template <class Sample, class Source>
    void append(SampleVector<Sample>& run, const Source& source, std::size_t numSamples) const;
    template <class Sample, class Source>
    void appendInSegments(SampleVector<Sample>& run, const Source& source, std::size_t numSamples) const;
    template <class Sample>
    void openSegment(SampleVector<Sample>& run) const;

    // Options.
    std::size_t numSignals = 1;  ///< kept for its readers, nothing depends on it
    std::size_t numChannels = 1;
    bool isComplex = false;
    std::size_t segmentLength = 128;
    double overlapPercent = 80.0;
    std::size_t segmentsPerBlock = 1;
    bool zerosInFirstSegment = false;

    // Derived.
    std::size_t numOverlapSamples = 0;

    // State.
    std::variant<Runs<double>, Runs<std::complex<double>>> store;
};

}  // namespace dspwavedecks

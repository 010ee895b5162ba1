#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ClientFacts.h"
#include "SampleHistory.h"
#include "SignalFrame.h"
#include "wavedeck/WaveDeckClientInfo.h"

namespace wavedeck::driver {

/// Where a frame comes from.
enum class FrameSource { Stream, Replay };

/// The stream of a client's samples: gives each frame its times, keeps the raw samples that a replay needs, and knows
/// how far the signals have come.
class SampleStream {
public:
    /// historySpan: seconds of samples that a replay shall reach back, at least.
    SampleStream(const ClientFacts& facts, const WaveDeckClientInfo& info, double historySpan);

    /// Back to the first sample, nothing stored.
    void restart();
    void setHistorySpan(double seconds);
    /// Takes other counts of raw channels and frame sizes over. A signal whose count changes loses its stored samples,
    /// and so does one of a simulation whose frame size changes.
    void resize(const std::vector<int>& numChannels, const std::vector<int>& frameSizes);
    /// The next sample is the first behind `time`, and what is stored of later times is dropped.
    void rewind(double time);

    std::size_t numSignals() const { return signals_.size(); }
    /// The frame in hand, signal by signal.
    std::vector<SignalFrame>& signals() { return signals_; }

    /// Throws DriverError unless the size is a multiple of the signal's count of channels.
    void checkFrame(std::size_t signal, std::span<const double> raw) const;
    /// Throws DriverError for a size that is no head form.
    void checkHead(std::size_t signal, std::span<const double> head) const;

    /// Takes the next samples of a signal: raw is [numChannels][n].
    void take(std::size_t signal, std::span<const double> raw, FrameSource source);
    /// Takes a buffer that every stage shall see as it stands.
    void takeAsIs(std::size_t signal, std::span<const double> buffer, FrameSource source);
    /// Takes a simulation's frame in head form: F times, then [numChannels][F * frameSize].
    void takeHead(std::size_t signal, std::span<const double> head, FrameSource source);
    /// Takes the stored samples as the frame in hand.
    void takeStored(std::size_t signal);

    /// Notes that the samples so far gave an output, so that a replay need not reach further back to give one.
    void noteOutput(std::size_t signal) { sinceOutput_[signal] = 0; }

    int numChannels(std::size_t signal) const { return numChannels_[signal]; }
    int frameSize(std::size_t signal) const { return frameSizes_[signal]; }
    const std::vector<int>& numChannels() const { return numChannels_; }
    const std::vector<int>& frameSizes() const { return frameSizes_; }
    /// Furthest time reached: the end of the last sample, seconds.
    double time() const { return time_; }

private:
    /// Sample i of a simulation's frame has the time start + (first + i) * sample time.
    struct TimeGrid {
        double start;
        double first;
    };

    double timeOf(std::size_t signal, std::uint64_t index) const;
    void begin(std::size_t signal, std::span<const double> raw);
    void fillTimes(std::size_t signal, std::uint64_t first, std::size_t n, double* times) const;
    void formBlocks(std::size_t signal, std::span<const double> raw, std::uint64_t first);
    TimeGrid gridOf(std::size_t signal, double frameTime) const;
    void expandHead(std::size_t signal, std::span<const double> head);
    void storeHead(std::size_t signal, std::span<const double> head, std::size_t frames);
    std::size_t valuesPerTime(std::size_t signal) const;
    void store(std::size_t signal, const double* rows, std::size_t n);
    std::size_t rowsStored(std::size_t signal) const;
    std::size_t framesStored(std::size_t signal) const;
    void configureHistory(std::size_t signal);

    // options
    const ClientFacts& facts_;
    const WaveDeckClientInfo& info_;
    double historySpan_ = 0.0;
    std::vector<int> numChannels_;
    std::vector<int> frameSizes_;

    // derived
    bool storesTimes_ = false;       ///< row 0 of the history is the times
    bool storesFrameTimes_ = false;  ///< the stored times are one a simulation frame

    // state
    std::vector<SignalFrame> signals_;
    std::vector<SampleHistory> history_;      ///< of each signal
    std::vector<SampleHistory> frameTimes_;   ///< of each signal: times of the simulation frames in the history
    std::vector<std::uint64_t> nextIndex_;    ///< of each signal: index of the sample to come
    std::vector<std::uint64_t> sinceOutput_;  ///< of each signal: samples since the last output
    double time_ = 0.0;

    // scratch
    std::vector<double> stored_;
    std::vector<std::vector<double>> heads_;  ///< of each signal: a replayed head
};

}  // namespace wavedeck::driver

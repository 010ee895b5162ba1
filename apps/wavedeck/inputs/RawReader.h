#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ByteSource.h"
#include "SampleFormat.h"
#include "SignalReader.h"

namespace program {

/// A stretch of raw samples that have a scale and a centre frequency in common.
struct RawRun {
    std::uint64_t firstSample = 0;  ///< sample time at which it begins; 0 of the first run, rising
    std::uint64_t headerBytes = 0;  ///< bytes in front of it that are no samples
    double factor = 1.0;            ///< multiplies every value
    double centerFrequency = 0.0;   ///< Hz
};

/// Raw samples from a file, a pipe or standard input: the numbers of all channels of one sample time side by side.
class RawReader final : public SignalReader {
public:
    /// facts          all but what follows from the bytes: the length
    /// runs           at least one
    /// trailingBytes  bytes at the end of a file that are no samples
    /// notes          what is to be told of the source beside what the reader finds
    RawReader(std::unique_ptr<ByteSource> source, SampleFormat format, SignalFacts facts, std::vector<RawRun> runs,
              std::uint64_t trailingBytes = 0, std::vector<std::string> notes = {});

    std::size_t read(std::size_t points, std::vector<double>& frame) override;
    bool seek(std::uint64_t sample) override;
    void setCenterFrequency(double frequency) override;

private:
    /// Where a run ends, in sample times.
    std::uint64_t endOf(std::size_t run) const;
    /// Goes to the run that the position is in; passes over headers.
    void enterRun();
    /// Reads a piece of one run behind what interleaved_ holds; returns its sample times.
    std::size_t readPiece(std::size_t points, std::size_t held);

    // options
    std::unique_ptr<ByteSource> source_;
    SampleFormat format_;
    std::vector<RawRun> runs_;
    // derived
    std::size_t bytesPerTime_;
    std::vector<std::uint64_t> runBytes_;  ///< position of each run's first sample in the source
    std::uint64_t rest_ = 0;               ///< bytes at the end that make no whole sample
    // state
    std::uint64_t next_ = 0;  ///< sample time
    std::size_t run_ = 0;
    // scratch
    std::vector<unsigned char> stored_;
    std::vector<double> interleaved_;
};

}  // namespace program

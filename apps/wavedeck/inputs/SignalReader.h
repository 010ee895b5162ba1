#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "RecordedTimes.h"

namespace program {

/// What is known of a signal before its first sample is read.
struct SignalFacts {
    std::string name;                     ///< as the person wrote it
    std::string format;                   ///< container and type of a sample
    std::string scale;                    ///< how stored numbers become values
    double sampleRate = 0.0;              ///< Hz
    int channels = 0;                     ///< a complex channel counts once
    bool isComplex = false;               ///< each channel has a real and an imaginary part
    std::optional<std::uint64_t> length;  ///< sample times, when the source knows it
    double centerFrequency = 0.0;         ///< Hz, of the frame read last, before it of the first: added to frequencies
    bool changesCenter = false;           ///< centre frequencies differ from part to part
    std::string datatype = {};            ///< how its samples are stored, in SigMF's terms; empty: not raw
    std::uint64_t firstIndex = 0;         ///< index of the first sample in the recording
    std::uint64_t firstSample = 0;        ///< sample time of the source with which the play begins
    RecordedTimes recorded = {};          ///< when the samples were taken, by their sample times in the source
    std::string checksum = {};            ///< whether the samples' bytes are those that were written; empty: not told

    /// Rows of a frame: one a channel, two a complex channel.
    int rows() const { return isComplex ? 2 * channels : channels; }
};

/// A source of sample values: a sound file, raw samples, a test signal.
class SignalReader {
public:
    virtual ~SignalReader() = default;
    SignalReader() = default;
    SignalReader(const SignalReader&) = delete;
    SignalReader& operator=(const SignalReader&) = delete;

    const SignalFacts& facts() const { return facts_; }

    /// Reads the next frame of at most `points` sample times.
    /// frame  [rows * n] row after row without gaps: one row of n values a channel; of a complex signal the rows of all
    ///        real parts, then the rows of all imaginary parts. Values that are not finite pass as they are.
    /// returns n; below `points` only where the signal ends, where another centre frequency begins, or when a stop was
    ///         asked for; 0 behind its end
    virtual std::size_t read(std::size_t points, std::vector<double>& frame) = 0;

    /// Goes to a sample time, counted from the first; behind the end nothing is left to read. Returns false where the
    /// source cannot go back there.
    virtual bool seek(std::uint64_t sample) = 0;

    /// Says where in the band the signal lay, for a source that does not tell. Hz
    virtual void setCenterFrequency(double frequency) { facts_.centerFrequency = frequency; }

    /// What could not be used as it stood: samples that the header promises and the file lacks, part of a sample at the
    /// end. One sentence each, complete once the end was reached.
    const std::vector<std::string>& notes() const { return notes_; }

protected:
    /// Turns interleaved samples into rows.
    /// interleaved  [n * columns] the values of one sample time side by side; of a complex signal each real part is
    ///              followed by its imaginary part
    static void separate(const double* interleaved, std::size_t n, const SignalFacts& facts,
                         std::vector<double>& frame);

    /// Stores a note once, however often its place is read.
    void note(const std::string& text);

    SignalFacts facts_;
    std::vector<std::string> notes_;
};

}  // namespace program

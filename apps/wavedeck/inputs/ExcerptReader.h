#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "SignalReader.h"

namespace program {

/// A part of another source, once or over and over: from a sample time on, for so many sample times.
class ExcerptReader final : public SignalReader {
public:
    /// seek, duration  s; a duration may be infinite
    /// loop            begins anew at `seek` whenever the part has ended
    /// Throws UsageError when the source cannot go there, when the part holds no sample, or when it cannot be looped;
    /// of a source that does not know its length, when it is read.
    ExcerptReader(std::unique_ptr<SignalReader> source, double seek, double duration, bool loop);

    std::size_t read(std::size_t points, std::vector<double>& frame) override;
    bool seek(std::uint64_t sample) override;

private:
    std::size_t readPiece(std::size_t points, std::vector<double>& frame);
    /// Begins the part anew; false where that is not to be, or the part is empty.
    bool rewind();

    // options
    std::unique_ptr<SignalReader> source_;
    bool loop_;
    // derived
    std::uint64_t first_ = 0;
    std::uint64_t points_ = std::numeric_limits<std::uint64_t>::max();  ///< of the part
    // state
    std::uint64_t read_ = 0;  ///< of the part
    std::string fault_;       ///< why the part cannot begin anew, once what was read is taken
    bool hasBegun_ = false;   ///< something was read
    bool isAhead_ = false;    ///< the piece belongs to the next frame: it has another centre frequency
    // scratch
    std::vector<double> piece_;
    std::vector<double> joined_;
};

}  // namespace program

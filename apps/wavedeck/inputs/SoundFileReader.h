#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "SignalReader.h"

namespace program {

/// A sound file of any kind that libsndfile reads. Integer samples are divided by their full scale, floating-point ones
/// come as stored. Its channels may be taken in pairs, as in-phase and quadrature parts.
class SoundFileReader final : public SignalReader {
public:
    /// factor  multiplies every sample, for values in another unit than full scale
    /// isIq    two channels are the real and the imaginary part of one
    /// Throws UsageError when the file cannot be opened, is no sound file, holds no channel, or none to make a pair.
    SoundFileReader(const std::string& path, double factor, bool isIq);

    std::size_t read(std::size_t points, std::vector<double>& frame) override;
    bool seek(std::uint64_t sample) override;

private:
    struct Close {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    void noteMissingSamples();

    // options
    double factor_;
    // derived
    bool isSeekable_ = false;
    // state
    std::unique_ptr<SNDFILE, Close> file_;
    std::uint64_t next_ = 0;  ///< sample time
    bool ended_ = false;
    // scratch
    std::vector<double> interleaved_;
};

}  // namespace program

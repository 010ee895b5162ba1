#pragma once

#include <sndfile.h>

#include <memory>
#include <string>
#include <vector>

#include "SignalReader.h"

namespace program {

/// A sound file of any kind that libsndfile reads. Integer samples are divided by their full scale, floating-point ones
/// come as stored.
class SoundFileReader final : public SignalReader {
public:
    /// factor  multiplies every sample, for values in another unit than full scale
    /// Throws UsageError when the file cannot be opened, is no sound file or holds no channel.
    SoundFileReader(const std::string& path, double factor);

    std::size_t read(std::size_t points, std::vector<double>& frame) override;

private:
    struct Close {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    void noteMissingSamples();

    // options
    double factor_;
    // state
    std::unique_ptr<SNDFILE, Close> file_;
    std::uint64_t samplesRead_ = 0;
    bool ended_ = false;
    // scratch
    std::vector<double> interleaved_;
};

}  // namespace program

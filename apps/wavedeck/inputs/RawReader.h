#pragma once

#include <string>
#include <vector>

#include "SampleFormat.h"
#include "SignalReader.h"

namespace program {

/// Raw samples from a file, a pipe or standard input: the numbers of all channels of one sample time side by side.
class RawReader final : public SignalReader {
public:
    /// path      a file, or "-" for standard input
    /// rate      Hz, above 0
    /// channels  at least 1
    /// factor    multiplies every sample
    /// Throws UsageError when the file cannot be opened.
    RawReader(const std::string& path, const SampleFormat& format, double rate, int channels, double factor);
    ~RawReader() override;

    std::size_t read(std::size_t points, std::vector<double>& frame) override;

private:
    /// Reads until the buffer holds `wanted` bytes, the source ends or a stop is asked for.
    void fill(std::size_t wanted);

    // options
    const SampleFormat& format_;
    double factor_;
    // derived
    std::size_t bytesPerTime_;
    // state
    int descriptor_ = -1;
    std::size_t held_ = 0;  ///< bytes in stored_
    bool ended_ = false;
    // scratch
    std::vector<unsigned char> stored_;
    std::vector<double> interleaved_;
};

}  // namespace program

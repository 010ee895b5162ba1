#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "SignalReader.h"
#include "TestSignals.h"

namespace program {

/// A built-in test signal `gen:NAME?key=value&...`. A sample is a function of its index and the seed: the signal is the
/// same however it is read.
class TestSignalReader final : public SignalReader {
public:
    /// text  what stands behind "gen:"; throws UsageError when it cannot be understood
    explicit TestSignalReader(const std::string& text);

    std::size_t read(std::size_t points, std::vector<double>& frame) override;
    bool seek(std::uint64_t sample) override;

private:
    // options
    double noiseRms_ = 0.0;
    double dc_ = 0.0;  ///< added to every (real) sample
    std::uint64_t seed_ = 0;
    // derived
    std::uint64_t end_ = 0;  ///< index behind the last sample
    // state
    SignalFunction signal_;
    std::uint64_t next_ = 0;
};

}  // namespace program

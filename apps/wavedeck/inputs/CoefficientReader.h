#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "SignalReader.h"

namespace program {

/// The coefficients of a digital filter from a text file, one a line, b[0] first. Blank lines and what follows a `#`
/// are passed over. All coefficients are one frame.
class CoefficientReader final : public SignalReader {
public:
    /// path  a file, or "-" for standard input
    /// rate  Hz, at which the filter runs
    /// Throws UsageError naming the line that holds no number, or that there are no coefficients.
    CoefficientReader(const std::string& path, double rate);

    /// Gives all coefficients at once, however many points are asked for.
    std::size_t read(std::size_t points, std::vector<double>& frame) override;
    bool seek(std::uint64_t sample) override;

private:
    std::vector<double> coefficients_;
    bool given_ = false;
};

}  // namespace program

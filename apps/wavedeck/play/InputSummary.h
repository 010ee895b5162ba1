#pragma once

#include <cstdint>
#include <span>

#include "Report.h"
#include "SignalReader.h"

namespace program {

/// What went through of one input: how many samples, their extremes and power, and how many were not finite.
class InputSummary {
public:
    /// Adds the values of a frame, all rows.
    void add(std::span<const double> frame, std::size_t samples);

    std::uint64_t samples() const { return samples_; }

    /// The section of the report on this input.
    ReportSection report(const SignalFacts& facts) const;

private:
    std::uint64_t samples_ = 0;  ///< sample times
    std::uint64_t finite_ = 0;   ///< values
    std::uint64_t notFinite_ = 0;
    double smallest_ = 0.0;
    double largest_ = 0.0;
    double sumOfSquares_ = 0.0;
};

}  // namespace program

#include "InputSummary.h"

#include <cmath>
#include <limits>

namespace program {

void InputSummary::add(std::span<const double> frame, std::size_t samples) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    double smallest = finite_ == 0 ? infinity : smallest_;
    double largest = finite_ == 0 ? -infinity : largest_;
    double sum = 0.0;
    std::uint64_t notFinite = 0;
    for (const double value : frame) {
        const bool finite = std::abs(value) < infinity;
        notFinite += finite ? 0U : 1U;
        smallest = finite && value < smallest ? value : smallest;
        largest = finite && value > largest ? value : largest;
        sum += finite ? value * value : 0.0;
    }
    samples_ += samples;
    notFinite_ += notFinite;
    finite_ += frame.size() - notFinite;
    sumOfSquares_ += sum;
    smallest_ = smallest;
    largest_ = largest;
}

ReportSection InputSummary::report(const SignalFacts& facts) const {
    ReportSection section{"", "input " + facts.name, {}, {}, {}};
    section.add({"name", "", facts.name}).add({"format", "format", facts.format});
    section.add({"scale", "scale", facts.scale}).add({"rate", "sample rate", facts.sampleRate, "Hz"});
    section.add({"channels", "channels", static_cast<std::uint64_t>(facts.channels)});
    section.add({"complex", "complex", facts.isComplex});
    if (facts.centerFrequency != 0.0 || facts.changesCenter) {
        section.add(
            {"centerFrequency", facts.changesCenter ? "last centre" : "centre frequency", facts.centerFrequency, "Hz"});
    }
    if (const auto recorded = facts.recorded.at(facts.firstSample, facts.sampleRate)) {
        section.add({"recorded", "recorded", formatDateTime(*recorded)});
    }
    if (!facts.checksum.empty()) {
        section.add({"checksum", "checksum", facts.checksum});
    }
    section.add({"samples", "samples", samples_});
    section.add({"duration", "duration", static_cast<double>(samples_) / facts.sampleRate, "s"});
    if (finite_ > 0) {
        section.add({"minimum", "minimum", smallest_}).add({"maximum", "maximum", largest_});
        // Of complex samples the magnitude's: each has two values.
        const double squares = sumOfSquares_ * (facts.isComplex ? 2.0 : 1.0);
        section.add({"rms", "rms", std::sqrt(squares / static_cast<double>(finite_))});
    }
    section.add({"notFinite", "NaN or Inf", notFinite_});
    return section;
}

}  // namespace program

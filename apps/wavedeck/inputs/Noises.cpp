// Test signals that are random: white noise, and a carrier with phase noise.
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "RandomNumbers.h"
#include "TestSignals.h"

namespace program {
namespace {

constexpr double huge = 1e300;

/// Streams of random numbers that one channel may need; each has numbers of its own.
enum class Purpose : std::uint64_t { signal = 0, phaseWalk = 1, phaseFloor = 2 };

RandomNumbers randomNumbers(const SignalFrame& frame, int channel, Purpose purpose) {
    return {frame.seed, (static_cast<std::uint64_t>(channel) << 8U) + static_cast<std::uint64_t>(purpose)};
}

/// A carrier whose phase performs a random walk (power falling with the square of the offset from the carrier), with
/// white phase noise on top. The walk is the one thing here that has a state.
class PhaseNoiseCarrier {
public:
    PhaseNoiseCarrier(const SignalDescription& description, const SignalFrame& frame)
        : frame_(frame),
          frequency_(description.number("frequency")),
          amplitude_(description.number("amplitude")),
          walkStep_(stepOfWalk(description.number("level"), description.number("at"), frame.sampleRate)),
          floorRms_(std::sqrt(std::pow(10.0, description.number("floor") / 10.0) * frame.sampleRate)),
          walks_(static_cast<std::size_t>(frame.channels)) {}

    void operator()(std::uint64_t first, int channel, std::span<double> real, std::span<double> imaginary) {
        const auto walkNumbers = randomNumbers(frame_, channel, Purpose::phaseWalk);
        const auto floorNumbers = randomNumbers(frame_, channel, Purpose::phaseFloor);
        double& walk = walks_[static_cast<std::size_t>(channel)];
        for (std::size_t i = 0; i < real.size(); ++i) {
            const std::uint64_t index = first + i;
            walk += walkStep_ * walkNumbers.gaussianPair(index).real();
            const double noise = walk + floorRms_ * floorNumbers.gaussianPair(index).real();
            const double angle = 2.0 * std::numbers::pi * cycleFraction(frequency_, index, frame_.sampleRate) + noise;
            real[i] += amplitude_ * std::cos(angle);
            if (!imaginary.empty()) {
                imaginary[i] += amplitude_ * std::sin(angle);
            }
        }
    }

private:
    /// Standard deviation of a step of the walk. White steps of variance s^2 have the one-sided density 2 s^2 / rate; a
    /// running sum multiplies it by 1 / (4 sin^2(pi f / rate)); half of a phase density is the level beside the
    /// carrier:
    ///   L(f) = s^2 / (rate * 4 sin^2(pi f / rate)).
    static double stepOfWalk(double level, double at, double rate) {
        const double gain = 2.0 * std::sin(std::numbers::pi * at / rate);
        return std::sqrt(std::pow(10.0, level / 10.0) * rate) * std::abs(gain);
    }

    // options
    SignalFrame frame_;
    double frequency_;  ///< Hz
    double amplitude_;
    // derived
    double walkStep_;  ///< radians
    double floorRms_;  ///< radians
    // state
    std::vector<double> walks_;  ///< [channels] radians
};

}  // namespace

SignalFunction makeNoise(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 1> keys{{{"rms", "0.1", 0.0, huge}}};
    static constexpr std::array<std::string_view, 2> distributions{"gaussian", "uniform"};
    description.accept(keys);
    const bool uniform = description.word("distribution", distributions) == "uniform";
    // Half the power of complex noise lies in each part.
    const double rms = description.number("rms") * (frame.isComplex ? std::sqrt(0.5) : 1.0);
    return [=](std::uint64_t first, int channel, std::span<double> real, std::span<double> imaginary) {
        const auto numbers = randomNumbers(frame, channel, Purpose::signal);
        for (std::size_t i = 0; i < real.size(); ++i) {
            const std::uint64_t index = first + i;
            // A uniform number has the variance 1/12.
            const std::complex<double> value =
                uniform ? std::sqrt(12.0) *
                              std::complex(numbers.uniform(2 * index) - 0.5, numbers.uniform(2 * index + 1) - 0.5)
                        : numbers.gaussianPair(index);
            real[i] += rms * value.real();
            if (!imaginary.empty()) {
                imaginary[i] += rms * value.imag();
            }
        }
    };
}

SignalFunction makePhaseNoise(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 5> keys{{
        {"frequency", "10k", -huge, huge},
        {"amplitude", "1", -huge, huge},
        {"level", "-80", -1000.0, 0.0},
        {"at", "1k", 1e-12, huge},
        {"floor", "-inf", -std::numeric_limits<double>::infinity(), 0.0},
    }};
    description.accept(keys);
    return PhaseNoiseCarrier(description, frame);
}

}  // namespace program

// Test signals drawn as waveforms over a period: square, pulse, ramp, step. They are sampled as they stand, without
// limiting their band.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "TestSignals.h"
#include "UsageError.h"

namespace program {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double huge = 1e300;

/// Fills a channel from a function of the index.
template <typename Value>
SignalFunction fromIndex(Value value) {
    return [value](std::uint64_t first, int, std::span<double> real, std::span<double>) {
        for (std::size_t i = 0; i < real.size(); ++i) {
            real[i] += value(first + i);
        }
    };
}

/// Position within the period, 0 up to 1, of a waveform with a phase in degrees.
double position(double frequency, double phase, std::uint64_t index, double rate) {
    const double cycles = cycleFraction(frequency, index, rate) + phase / 360.0;
    return cycles - std::floor(cycles);
}

/// Seconds since the period began.
double timeInPeriod(std::uint64_t index, double period, double rate) {
    const auto n = static_cast<double>(index);
    return (std::isinf(period) ? n : std::fmod(n, period * rate)) / rate;
}

/// Response of the second-order system w^2 / (s^2 + 2 d w s + w^2) to a unit step at t = 0.
double secondOrderStep(double t, double naturalFrequency, double damping) {
    if (t < 0.0) {
        return 0.0;
    }
    const double w = 2.0 * std::numbers::pi * naturalFrequency;
    const double decay = damping * w * t;
    if (damping < 1.0) {
        const double ratio = std::sqrt(1.0 - damping * damping);
        const double angle = ratio * w * t;
        return 1.0 - std::exp(-decay) * (std::cos(angle) + damping / ratio * std::sin(angle));
    }
    if (damping == 1.0) {
        return 1.0 - std::exp(-decay) * (1.0 + decay);
    }
    // Two real poles -w (d -+ r); the slow one written as a quotient, since the difference would cancel.
    const double ratio = std::sqrt(damping * damping - 1.0);
    const double slow = w / (damping + ratio);
    const double fast = w * (damping + ratio);
    return 1.0 - (fast * std::exp(-slow * t) - slow * std::exp(-fast * t)) / (fast - slow);
}

}  // namespace

SignalFunction makeSquare(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 4> keys{{
        {"frequency", "1k", 0.0, huge},
        {"amplitude", "1", -huge, huge},
        {"duty", "0.5", 0.0, 1.0},
        {"phase", "0", -huge, huge},
    }};
    description.accept(keys);
    const double frequency = description.number("frequency");
    const double amplitude = description.number("amplitude");
    const double duty = description.number("duty");
    const double phase = description.number("phase");
    return fromIndex([=, rate = frame.sampleRate](std::uint64_t index) {
        return position(frequency, phase, index, rate) < duty ? amplitude : -amplitude;
    });
}

SignalFunction makePulse(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 7> keys{{
        {"period", "1m", 1e-12, huge},
        {"width", "0.3m", 0.0, huge},
        {"rise", "50u", 0.0, huge},
        {"fall", "50u", 0.0, huge},
        {"low", "0", -huge, huge},
        {"high", "1", -huge, huge},
        {"delay", "0", 0.0, huge},
    }};
    description.accept(keys);
    const double period = description.number("period");
    const double rise = description.number("rise");
    const double fall = description.number("fall");
    const double low = description.number("low");
    const double high = description.number("high");
    const double delay = description.number("delay");
    // The width is measured where the edges cross half of the amplitude.
    const double fallStart = description.number("width") + (rise - fall) / 2.0;
    if (fallStart < rise || fallStart + fall > period) {
        throw UsageError("gen:pulse: an edge, the top and an edge of these times do not fit into the period");
    }
    return fromIndex([=, rate = frame.sampleRate](std::uint64_t index) {
        double t = timeInPeriod(index, period, rate) - std::fmod(delay, period);
        t += t < 0.0 ? period : 0.0;
        const double up = rise > 0.0 ? std::clamp(t / rise, 0.0, 1.0) : 1.0;
        const double down = fall > 0.0 ? std::clamp((t - fallStart) / fall, 0.0, 1.0) : (t >= fallStart ? 1.0 : 0.0);
        return low + (high - low) * (up - down);
    });
}

SignalFunction makeRamp(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 4> keys{{
        {"frequency", "1k", 0.0, huge},
        {"amplitude", "1", -huge, huge},
        {"symmetry", "1", 0.0, 1.0},
        {"phase", "0", -huge, huge},
    }};
    description.accept(keys);
    const double frequency = description.number("frequency");
    const double amplitude = description.number("amplitude");
    const double symmetry = description.number("symmetry");
    const double phase = description.number("phase");
    return fromIndex([=, rate = frame.sampleRate](std::uint64_t index) {
        const double p = position(frequency, phase, index, rate);
        return amplitude * (p < symmetry ? 2.0 * p / symmetry - 1.0 : 1.0 - 2.0 * (p - symmetry) / (1.0 - symmetry));
    });
}

SignalFunction makeStep(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 6> keys{{
        {"low", "0", -huge, huge},
        {"high", "1", -huge, huge},
        {"at", "0.1", 0.0, huge},
        {"period", "inf", 1e-12, infinity},
        {"frequency", "inf", 1e-12, infinity},
        {"damping", "0.5", 0.0, huge},
    }};
    description.accept(keys);
    const double low = description.number("low");
    const double high = description.number("high");
    const double at = description.number("at");
    const double period = description.number("period");
    const double frequency = description.number("frequency");
    const double damping = description.number("damping");
    return fromIndex([=, rate = frame.sampleRate](std::uint64_t index) {
        const double t = timeInPeriod(index, period, rate) - at;
        const double settled = std::isinf(frequency) ? (t >= 0.0 ? 1.0 : 0.0) : secondOrderStep(t, frequency, damping);
        return low + (high - low) * settled;
    });
}

}  // namespace program

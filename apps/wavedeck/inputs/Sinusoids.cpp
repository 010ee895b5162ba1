// Test signals made of sinusoids: tones, sweeps, modulated carriers.
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

/// One sinusoid; its amplitude and phase in cycles.
struct Sinusoid {
    double frequency;
    double amplitude;
    double phase;
};

void addPolar(double amplitude, double cycles, double& real, double* imaginary) {
    const double angle = 2.0 * std::numbers::pi * cycles;
    real += amplitude * std::cos(angle);
    if (imaginary != nullptr) {
        *imaginary += amplitude * std::sin(angle);
    }
}

SignalFunction sumOf(std::vector<Sinusoid> sinusoids, double rate) {
    return [sinusoids = std::move(sinusoids), rate](std::uint64_t first, int, std::span<double> real,
                                                    std::span<double> imaginary) {
        for (std::size_t i = 0; i < real.size(); ++i) {
            for (const auto& part : sinusoids) {
                addPolar(part.amplitude, cycleFraction(part.frequency, first + i, rate) + part.phase, real[i],
                         imaginary.empty() ? nullptr : &imaginary[i]);
            }
        }
    };
}

double fromDecibels(double level) {
    return std::pow(10.0, level / 20.0);
}

}  // namespace

SignalFunction makeTone(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 3> keys{{
        {"frequency", "1k", -huge, huge},
        {"amplitude", "1", -huge, huge},
        {"phase", "0", -huge, huge},
    }};
    description.accept(keys);
    return sumOf(
        {{description.number("frequency"), description.number("amplitude"), description.number("phase") / 360.0}},
        frame.sampleRate);
}

SignalFunction makeTwoTone(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 4> keys{{
        {"frequency", "1k", -huge, huge},
        {"spacing", "100", -huge, huge},
        {"amplitude", "0.5", -huge, huge},
        {"im3", "-inf", -infinity, 0.0},
    }};
    description.accept(keys);
    const double lower = description.number("frequency");
    const double upper = lower + description.number("spacing");
    const double amplitude = description.number("amplitude");
    std::vector<Sinusoid> parts{{lower, amplitude, 0.0}, {upper, amplitude, 0.0}};
    if (const double level = description.number("im3"); level > -infinity) {
        parts.push_back({2.0 * lower - upper, amplitude * fromDecibels(level), 0.0});
        parts.push_back({2.0 * upper - lower, amplitude * fromDecibels(level), 0.0});
    }
    return sumOf(std::move(parts), frame.sampleRate);
}

SignalFunction makeMultitone(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 3> keys{{
        {"frequency", "1k,2k,3k", -huge, huge},
        {"amplitude", "0.3", -huge, huge},
        {"phase", "0", -huge, huge},
    }};
    description.accept(keys);
    const auto& frequencies = description.list("frequency");
    const auto& amplitudes = description.list("amplitude");
    const auto& phases = description.list("phase");
    std::vector<Sinusoid> parts;
    for (std::size_t i = 0; i < frequencies.size(); ++i) {
        parts.push_back({frequencies[i], amplitudes[std::min(i, amplitudes.size() - 1)],
                         phases[std::min(i, phases.size() - 1)] / 360.0});
    }
    return sumOf(std::move(parts), frame.sampleRate);
}

SignalFunction makeChirp(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 4> keys{{
        {"start", "100", -huge, huge},
        {"stop", "10k", -huge, huge},
        {"period", "1", 1e-12, huge},
        {"amplitude", "1", -huge, huge},
    }};
    static constexpr std::array<std::string_view, 2> laws{"linear", "log"};
    description.accept(keys);
    const double start = description.number("start");
    const double stop = description.number("stop");
    const double period = description.number("period");
    const double amplitude = description.number("amplitude");
    const double rate = frame.sampleRate;
    const bool logarithmic = description.word("law", laws) == "log";
    if (logarithmic && !(start > 0.0 && stop > 0.0 && start != stop)) {
        throw UsageError("gen:chirp: a log sweep needs two different frequencies above 0");
    }
    // Phase is the integral of the frequency over the time t since the sweep began; it begins anew with each sweep.
    const double logRatio = logarithmic ? std::log(stop / start) : 0.0;
    return [=](std::uint64_t first, int, std::span<double> real, std::span<double> imaginary) {
        for (std::size_t i = 0; i < real.size(); ++i) {
            const double t = std::fmod(static_cast<double>(first + i), period * rate) / rate;
            const double cycles = logarithmic ? start * period / logRatio * std::expm1(t / period * logRatio)
                                              : t * (start + (stop - start) * t / (2.0 * period));
            addPolar(amplitude, cycles - std::floor(cycles), real[i], imaginary.empty() ? nullptr : &imaginary[i]);
        }
    };
}

SignalFunction makeAmplitudeModulation(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 4> keys{{
        {"frequency", "10k", -huge, huge},
        {"amplitude", "1", -huge, huge},
        {"modulation", "1k", -huge, huge},
        {"depth", "0.5", 0.0, huge},
    }};
    description.accept(keys);
    const double carrier = description.number("frequency");
    const double modulation = description.number("modulation");
    const double amplitude = description.number("amplitude");
    const double depth = description.number("depth");
    const double rate = frame.sampleRate;
    return [=](std::uint64_t first, int, std::span<double> real, std::span<double> imaginary) {
        for (std::size_t i = 0; i < real.size(); ++i) {
            const double swing = std::cos(2.0 * std::numbers::pi * cycleFraction(modulation, first + i, rate));
            addPolar(amplitude * (1.0 + depth * swing), cycleFraction(carrier, first + i, rate), real[i],
                     imaginary.empty() ? nullptr : &imaginary[i]);
        }
    };
}

SignalFunction makeFrequencyModulation(SignalDescription& description, const SignalFrame& frame) {
    static constexpr std::array<SignalKey, 4> keys{{
        {"frequency", "10k", -huge, huge},
        {"amplitude", "1", -huge, huge},
        {"modulation", "1k", 1e-12, huge},
        {"deviation", "2k", -huge, huge},
    }};
    description.accept(keys);
    const double carrier = description.number("frequency");
    const double modulation = description.number("modulation");
    const double amplitude = description.number("amplitude");
    const double index = description.number("deviation") / modulation / (2.0 * std::numbers::pi);
    const double rate = frame.sampleRate;
    return [=](std::uint64_t first, int, std::span<double> real, std::span<double> imaginary) {
        for (std::size_t i = 0; i < real.size(); ++i) {
            const double swing = std::sin(2.0 * std::numbers::pi * cycleFraction(modulation, first + i, rate));
            addPolar(amplitude, cycleFraction(carrier, first + i, rate) + index * swing, real[i],
                     imaginary.empty() ? nullptr : &imaginary[i]);
        }
    };
}

}  // namespace program

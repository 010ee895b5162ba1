#pragma once

#include "SpectrumEstimator.h"
#include "Test.h"

namespace spectrumtest {

using namespace testsupport;
using Method = SpectrumEstimator::Method;
using Range = SpectrumEstimator::FrequencyRange;
using Resolution = SpectrumEstimator::FrequencyResolutionMethod;
using Span = SpectrumEstimator::FrequencySpan;
using Type = SpectrumEstimator::SpectrumType;
using Units = SpectrumEstimator::SpectrumUnits;
using Window = SpectrumEstimator::Window;
using Averaging = SpectrumEstimator::AveragingMethod;

/// Noise of a congruential generator coloured by a recursion: the same samples on every machine and in every language.
inline Values colouredNoise(std::uint64_t state, std::size_t n) {
    Values samples(n);
    double last = 0.0;
    for (double& sample : samples) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        last = 0.75 * last + (static_cast<double>(state >> 11U) * 0x1p-53 - 0.5);
        sample = last;
    }
    return samples;
}

/// amplitude * cos(2 pi frequency t + phase)
inline Values tone(double frequency, double amplitude, std::size_t n, double sampleRate, double phase = 0.3) {
    Values samples(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double turns = frequency * static_cast<double>(i) / sampleRate;
        samples[i] = amplitude * std::cos(2.0 * std::numbers::pi * (turns - std::floor(turns)) + phase);
    }
    return samples;
}

inline void add(Values& to, const Values& values) {
    for (std::size_t i = 0; i < to.size(); ++i) {
        to[i] += values[i];
    }
}

inline void setRBW(SpectrumEstimator& estimator, double rbw) {
    estimator.setAutoRBW(false);
    estimator.setRBW(rbw);
}

inline void setWindowLength(SpectrumEstimator& estimator, std::size_t length) {
    estimator.setFrequencyResolutionMethod(Resolution::windowLength);
    estimator.setWindowLength(length);
}

inline void setFFTLength(SpectrumEstimator& estimator, std::size_t length) {
    estimator.setAutoFFTLength(false);
    estimator.setFFTLength(length);
}

inline void setBand(SpectrumEstimator& estimator, double sampleRate, double start, double stop, double rbw) {
    estimator.setSampleRate(sampleRate);
    estimator.setFrequencySpan(Span::startAndStopFrequencies);
    estimator.setStartFrequency(start);
    estimator.setStopFrequency(stop);
    setRBW(estimator, rbw);
}

/// Compares spectra point by point, with a tolerance relative to the largest one.
inline void expectClose(const Values& spectrum, const Values& expected, double tolerance) {
    ASSERT_EQ(spectrum.size(), expected.size());
    const double largest = *std::max_element(expected.begin(), expected.end());
    ASSERT_GT(largest, 0.0);
    for (std::size_t k = 0; k < expected.size(); ++k) {
        ASSERT_NEAR(spectrum[k], expected[k], tolerance * largest) << "point " << k;
    }
}

/// An estimator with a host around it: set up on demand, fed with signals that are cut into frames.
class Bench {
public:
    /// One entry a signal: its channels, a complex one having two columns each.
    struct Signal {
        std::vector<Values> columns;
        bool isComplex = false;
    };

    std::unique_ptr<SpectrumEstimator> owned = std::make_unique<SpectrumEstimator>();
    SpectrumEstimator& estimator = *owned;
    std::vector<Values> outs;  ///< of each signal
    int updates = 0;           ///< frames of the last signal that gave an update

    /// Watts, a window of L samples and a transform of N points: the plainest spectrum there is.
    void usePlainSettings(double sampleRate, std::size_t L, std::size_t N) {
        estimator.setSampleRate(sampleRate);
        setWindowLength(estimator, L);
        setFFTLength(estimator, N);
        estimator.setSpectrumUnits(Units::watts);
        estimator.setForgettingFactor(1.0);
    }

    /// Feeds samples [from, to) in frames of at most `frame` samples; `cut` may choose each frame's size below that.
    void feed(const std::vector<Signal>& signals, std::size_t from, std::size_t to, std::size_t frame,
              std::mt19937* cut = nullptr) {
        outs.resize(signals.size());
        while (from < to) {
            std::size_t size = std::min(frame, to - from);
            if (cut != nullptr) {
                size = 1 + (*cut)() % size;
            }
            feedFrame(signals, from, size);
            from += size;
        }
    }
    void feed(const std::vector<Signal>& signals, std::size_t frame) {
        feed(signals, 0, signals[0].columns[0].size(), frame);
    }

    const spectrumEstimatorMetaDataStruct& record() const { return estimator.getSpectrumMetaData(); }
    std::size_t points() const { return record().spectrumLength; }
    const Values& grid() const { return record().frequencyVector; }
    /// A channel's row of the last update.
    Values row(std::size_t signal = 0, std::size_t channel = 0) const {
        return part(outs.at(signal), (channel + 1) * points(), points());
    }
    std::size_t binOf(double frequency) const {
        const auto isNearer = [frequency](double a, double b) {
            return std::abs(a - frequency) < std::abs(b - frequency);
        };
        return static_cast<std::size_t>(std::min_element(grid().begin(), grid().end(), isNearer) - grid().begin());
    }

private:
    void feedFrame(const std::vector<Signal>& signals, std::size_t from, std::size_t size) {
        const auto count = static_cast<int>(signals.size());
        const std::vector<int> sizes(signals.size(), static_cast<int>(size));
        if (estimator.isLocked() && estimator.isPropertyChanged()) {
            estimator.release(false);
        }
        if (!estimator.isLocked()) {
            std::vector<int> columns;
            std::vector<int> complex;
            for (const Signal& signal : signals) {
                columns.push_back(static_cast<int>(signal.columns.size()));
                complex.push_back(signal.isComplex ? 1 : 0);
            }
            estimator.setup(count, sizes, sizes, columns, complex, true);
        }
        estimator.setFrameSize(sizes);
        for (int signal = 0; signal < count; ++signal) {
            Values frame;
            for (const Values& column : signals[static_cast<std::size_t>(signal)].columns) {
                append(frame, part(column, from, size));
            }
            const std::uint64_t before = record().numUpdatesProcessed;
            estimator.computeSpectrum(frame.data(), outs[static_cast<std::size_t>(signal)], signal);
            updates += record().numUpdatesProcessed != before ? 1 : 0;
        }
    }
};

/// amplitude * exp(j 2 pi frequency t), or its real part.
inline Bench::Signal carrier(double frequency, double amplitude, std::size_t n, double sampleRate, bool isComplex) {
    Bench::Signal signal{{tone(frequency, amplitude, n, sampleRate, 0.0)}, isComplex};
    if (isComplex) {
        signal.columns.push_back(tone(frequency, amplitude, n, sampleRate, -M_PI / 2));
    }
    return signal;
}

/// Columns of noise, by consecutive states.
inline Bench::Signal noise(std::uint64_t state, std::size_t n, std::size_t columns, bool isComplex) {
    Bench::Signal signal{{}, isComplex};
    for (std::size_t c = 0; c < columns; ++c) {
        signal.columns.push_back(colouredNoise(state + c, n));
    }
    return signal;
}

}  // namespace spectrumtest

namespace {

using namespace spectrumtest;

}  // namespace

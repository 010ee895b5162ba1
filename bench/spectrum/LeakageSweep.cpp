// What a tone between the bands leaves in a band, as the estimator reads it: prints a line for each distance in bands,
// with the levels in dB below the tone in the middle of the band. docs/measurements/plot_leakage.py draws it.

#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

#include "SpectrumEstimator.h"

namespace {

using dspwavedecks::SpectrumEstimator;
using Values = std::vector<double>;

constexpr std::size_t bands = 256;
constexpr std::size_t segments = 24;        // twice what a bank of 12 taps takes to fill
constexpr std::size_t row = bands / 2 - 1;  // of 0 Hz among centered bins

/// Power that the band at 0 Hz reads of exp(2 pi j distance t / bands), in watts.
template <class Configure>
double read(double distance, Configure configure) {
    constexpr auto frame = static_cast<int>(bands * segments);
    SpectrumEstimator estimator;
    estimator.setAutoFFTLength(false);
    estimator.setFFTLength(bands);
    estimator.setForgettingFactor(0.0);
    estimator.setSpectrumUnits(SpectrumEstimator::SpectrumUnits::watts);
    configure(estimator);
    Values samples(2 * bands * segments);
    for (std::size_t i = 0; i < bands * segments; ++i) {
        const double turns = distance * static_cast<double>(i) / bands;
        const double angle = 2.0 * std::numbers::pi * (turns - std::floor(turns));
        samples[i] = std::cos(angle);
        samples[bands * segments + i] = std::sin(angle);
    }
    Values out;
    estimator.setup(1, {frame}, {frame}, {2}, {1}, true);
    estimator.computeSpectrum(samples.data(), out, 0);
    return out.at(bands + row);
}

double readWindow(double distance, SpectrumEstimator::Window window) {
    return read(distance, [&](SpectrumEstimator& estimator) {
        estimator.setFrequencyResolutionMethod(SpectrumEstimator::FrequencyResolutionMethod::windowLength);
        estimator.setWindowLength(bands);
        estimator.setWindow(window);
    });
}

double readBank(double distance, std::size_t taps) {
    return read(distance, [&](SpectrumEstimator& estimator) {
        estimator.setMethod(SpectrumEstimator::Method::filterBank);
        estimator.setFrequencyResolutionMethod(SpectrumEstimator::FrequencyResolutionMethod::numFrequencyBands);
        estimator.setNumTapsPerBand(taps);
    });
}

}  // namespace

int main() {
    using Window = SpectrumEstimator::Window;
    constexpr std::size_t even = 12;
    constexpr std::size_t odd = 13;
    const double inBand[] = {readBank(0, even), readBank(0, odd), readWindow(0, Window::hann),
                             readWindow(0, Window::blackmanHarris)};
    std::printf("bands,filter bank,13 taps,Hann,Blackman-Harris\n");
    for (int step = 0; step <= 400; ++step) {
        const double distance = step * 0.01;
        const double powers[] = {readBank(distance, even), readBank(distance, odd), readWindow(distance, Window::hann),
                                 readWindow(distance, Window::blackmanHarris)};
        std::printf("%.2f", distance);
        for (std::size_t i = 0; i < 4; ++i) {
            std::printf(",%.2f", 10.0 * std::log10(powers[i] / inBand[i]));
        }
        std::printf("\n");
    }
}

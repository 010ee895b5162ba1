#include "EstimatorSupport.h"

namespace {

constexpr double sampleRate = 48000.0;

struct Band {
    const char* what;
    double start, stop, rbw;
    Range range;
    double overlap;
    std::size_t decimation;
};

// Spans of 0.80 of Fs' and less; the decimation follows from the rules.
const Band bands[] = {
    {"around 0 Hz", -2400, 2400, 20, Range::centered, 0, 8}, {"off centre", 1000, 3000, 10, Range::centered, 50, 6},
    {"negative", -3000, -1800, 10, Range::centered, 75, 6},  {"one-sided", 700, 2500, 10, Range::oneSided, 50, 8},
    {"narrow", 101, 149, 1, Range::oneSided, 33, 136},
};

Bench makeBench(const Band& band) {
    Bench bench;
    auto& e = bench.estimator;
    setBand(e, sampleRate, band.start, band.stop, band.rbw);
    e.setWindow(Window::flatTop);
    e.setFrequencyRange(band.range);
    e.setOverlapPercent(band.overlap);
    e.setSpectrumUnits(Units::watts);
    e.setForgettingFactor(0.0);
    return bench;
}

/// Samples that fill the filter, 48 d of them, and a whole segment that comes after.
std::size_t enoughSamples(Bench& bench, const Band& band) {
    bench.estimator.setup(1, {64}, {64}, {1}, {0}, true);
    const std::size_t update = bench.record().numSamplesPerUpdate;
    const std::size_t needed = band.decimation * (48 + bench.record().segmentLength);
    bench.estimator.release(true);
    return (needed / update + 1) * update;
}

// The flat-top window's scalloping is 0.01 dB and its side lobes 90 dB down; the passband ripple of the anti-alias
// filter is 140 dB down, so that both window effects are seen in a spectrum without zoom too.
TEST(SpectrumEstimatorZoom, TonesReadTheirLevelAndFrequencyAllOverTheSpan) {
    for (const Band& band : bands) {
        for (const bool isComplex : {false, true}) {
            for (const double place : {0.01, 0.13, 0.52, 0.99}) {
                SCOPED_TRACE(std::string(band.what) + (isComplex ? " complex " : " real ") + std::to_string(place));
                const double f = band.start + place * (band.stop - band.start);
                Bench bench = makeBench(band);
                const std::size_t n = enoughSamples(bench, band);
                bench.feed({carrier(f, 2.0, n, sampleRate, isComplex)}, place < 0.3 ? n : 999);
                const double decimatedRate =
                    bench.estimator.getDeltaFrequency() * static_cast<double>(bench.record().fftLength);
                EXPECT_NEAR(decimatedRate, sampleRate / static_cast<double>(band.decimation), 1e-6);
                const Values row = bench.row();
                const auto peak = std::max_element(row.begin(), row.end());
                // A real tone has its power in two halves, of which a one-sided spectrum shows the sum.
                const double power = (isComplex ? 4.0 : 1.0) * (band.range == Range::oneSided ? 2.0 : 1.0);
                EXPECT_NEAR(10.0 * std::log10(*peak / power), 0.0, 0.011);
                const double found = bench.grid()[static_cast<std::size_t>(peak - row.begin())];
                EXPECT_NEAR(std::abs(found), std::abs(f), 0.51 * bench.estimator.getDeltaFrequency())
                    << "or its mirror";
            }
        }
    }
}

// Two unequal tones, one RBW of the main lobe apart and more: the zoomed spectrum is that of the plain engine fed with
// the same tones at the decimated rate, which has no filter.
TEST(SpectrumEstimatorZoom, EqualsTheSpectrumOfABandThatWasNarrowFromTheStart) {
    for (const Band& band : bands) {
        Bench zoomed = makeBench(band);
        const std::size_t n = enoughSamples(zoomed, band);
        const double f1 = band.start + 0.31 * (band.stop - band.start);
        const double f2 = f1 + 8 * band.rbw;
        const auto pair = [&](std::size_t count, double rate) {
            Bench::Signal signal = carrier(f1, 2.0, count, rate, true);
            add(signal.columns[0], tone(f2, 0.02, count, rate, 1.0));
            add(signal.columns[1], tone(f2, 0.02, count, rate, 1.0 - M_PI / 2));
            return signal;
        };
        zoomed.feed({pair(n, sampleRate)}, 1 + n / 3);
        Bench narrow;
        const double rate = sampleRate / static_cast<double>(band.decimation);
        narrow.usePlainSettings(rate, zoomed.record().segmentLength, zoomed.record().fftLength);
        narrow.estimator.setWindow(Window::flatTop);
        narrow.estimator.setFrequencyRange(band.range);
        narrow.estimator.setForgettingFactor(0.0);
        narrow.feed({pair(2 * zoomed.record().segmentLength, rate)}, zoomed.record().segmentLength);
        const std::size_t offset = narrow.binOf(zoomed.grid()[0]);
        const Values all = narrow.row();
        const Values row = zoomed.row();
        for (std::size_t k = 0; k < row.size(); ++k) {
            // The filter passes the span within 1e-6. The two tones meet at another phase, which counts with the side
            // lobes of the larger one, 93 dB down.
            const double lobe = 2.0 * std::sqrt(2.0) * std::pow(10.0, -93.0 / 20.0);
            const double meeting = 4.0 * lobe * std::sqrt(all[offset + k]) + 4.0 * lobe * lobe;
            ASSERT_NEAR(row[k], all[offset + k], 3e-6 * all[offset + k] + meeting) << band.what << " point " << k;
        }
    }
}

TEST(SpectrumEstimatorZoom, WhatLiesOutsideFoldsInBelow120Decibels) {
    for (const Band& band : bands) {
        const double rate = sampleRate / static_cast<double>(band.decimation);
        for (const double place : {0.0, 0.25, 0.98}) {
            for (const double turns : {-2.0, -1.0, 1.0, 2.0}) {
                const double f = band.start + place * (band.stop - band.start) + turns * rate;
                if (std::abs(f) > sampleRate / 2) {
                    continue;
                }
                Bench bench = makeBench(band);
                const std::size_t n = enoughSamples(bench, band);
                bench.feed({carrier(f, 1.0, n, sampleRate, true)}, n);
                const Values row = bench.row();
                const double power = band.range == Range::oneSided ? 2.0 : 1.0;
                EXPECT_LT(10 * std::log10(*std::max_element(row.begin(), row.end()) / power), -120.0)
                    << band.what << ", " << f << " Hz";
            }
        }
    }
}

// Without zeros in front the first update waits for a whole segment of samples.
TEST(SpectrumEstimatorZoom, FirstSegmentOfAReplayComesFromSamplesAlone) {
    const Band band = bands[1];
    const auto samplesUntilFirstUpdate = [&](bool replay) {
        Bench bench = makeBench(band);
        bench.estimator.setOverlapPercent(replay ? 20.0 : 50.0);
        bench.estimator.setup(1, {60}, {60}, {1}, {0}, true);
        if (replay) {
            bench.estimator.setOverlapPercent(50.0);
            bench.estimator.release(true);
            bench.estimator.setPropertyChanged(true);
            bench.estimator.setup(1, {60}, {60}, {1}, {0}, false);
        }
        const Values samples = tone(2000, 1, 60, sampleRate);
        std::size_t fed = 0;
        for (Values out; out.empty(); fed += 60) {
            bench.estimator.computeSpectrum(samples.data(), out, 0);
        }
        return fed;
    };
    Bench probe = makeBench(band);
    probe.estimator.setup(1, {60}, {60}, {1}, {0}, true);
    const std::size_t L = probe.record().segmentLength;
    const std::size_t shared = probe.estimator.getNumOverlapSamples();
    const auto framesOf = [](std::size_t samples) { return (samples + 59) / 60 * 60; };
    EXPECT_EQ(samplesUntilFirstUpdate(false), framesOf(6 * (L - shared)));
    EXPECT_EQ(samplesUntilFirstUpdate(true), framesOf(6 * L));
}

}  // namespace

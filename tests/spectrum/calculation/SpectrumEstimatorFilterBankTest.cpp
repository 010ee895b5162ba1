#include "EstimatorSupport.h"

namespace {

constexpr double sampleRate = 6400.0;
constexpr std::size_t bands = 64;

Bench makeBench(bool kernels, std::size_t taps = 12) {
    Bench bench;
    auto& e = bench.estimator;
    e.setSampleRate(sampleRate);
    e.setMethod(Method::filterBank);
    setRBW(e, sampleRate / bands);
    e.setNumTapsPerBand(taps);
    e.setSpectrumUnits(Units::watts);
    e.setForgettingFactor(0.0);
    e.setUseHalideForFIRPolyphaseAnalysis(kernels);
    return bench;
}

/// The prototype in the order of its taps, from its branches.
Values prototypeOf(std::size_t taps) {
    Bench bench = makeBench(false, taps);
    bench.estimator.setup(1, {64}, {64}, {1}, {0}, true);
    const Values& branches = bench.estimator.getFilterbankPolyphaseMatrix();
    Values prototype(branches.size());
    for (std::size_t n = 0; n < prototype.size(); ++n) {
        prototype[n] = branches[n % bands * taps + n / bands];
    }
    return prototype;
}

double powerGain(const Values& h, double frequencyInBands) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < h.size(); ++n) {
        sum += h[n] * std::polar(1.0, -2.0 * M_PI * frequencyInBands * static_cast<double>(n) / bands);
    }
    return std::norm(sum);
}

// A Kaiser lowpass of A dB and N + 1 taps has a transition of (A - 7.95) / (14.36 N) of the rate, around the band edge;
// the formula is an empirical one, good to some 2 dB.
TEST(SpectrumEstimatorFilterBank, PrototypeHasTheShapeOfAKaiserLowpass) {
    const Values h = prototypeOf(12);
    ASSERT_EQ(h.size(), 12 * bands);
    EXPECT_EQ(h[6 * bands], 1.0 / bands) << "the middle of the sinc";
    EXPECT_NEAR(h[6 * bands - 5], h[6 * bands + 5], 1e-17);
    const double halfTransition = (140 - 7.95) / (14.36 * 12) / 2;
    EXPECT_NEAR(decibels(powerGain(h, 0.0)), 0.0, 1e-5);
    EXPECT_NEAR(decibels(powerGain(h, 0.5)), 20 * std::log10(0.5), 0.01);
    for (double f = 0.5 + halfTransition * 1.02; f < 8; f += 0.013) {
        ASSERT_LT(decibels(powerGain(h, f)), -137.0) << f << " bands away";
    }
}

TEST(SpectrumEstimatorFilterBank, ToneReadsWhatThePrototypePredicts) {
    const Values h = prototypeOf(12);
    const double width = sampleRate / bands;
    for (const bool kernels : {false, true}) {
        for (const double place : {10.0, 10.25, 10.5, -7.5, 12.0}) {
            const std::size_t n = 40 * bands;
            Bench bench = makeBench(kernels);
            bench.feed({carrier(place * width, 2, n, sampleRate, true)}, 7 * bands + 3);
            const Values row = bench.row();
            for (const double distance : {0.0, 1.0, 2.0, -2.0, 5.0}) {
                const double band = std::floor(place) + distance;
                const double read = row[bench.binOf(band * width)];
                EXPECT_NEAR(read, 4.0 * powerGain(h, place - band), 1e-13) << place << " read in band " << band;
            }
        }
    }
}

// The kernels sum the taps in another order: T + 1 roundings of sum |h x| each, which is some 3 here, and the transform
// adds eps * log2 N. On a spectrum that is 1e-14 of the largest bin, for power twice that.
TEST(SpectrumEstimatorFilterBank, KernelsAgreeWithThePlainCode) {
    const struct {
        std::size_t taps, frame;
        double start, stop;
        bool isComplex;
        std::size_t columns;
        std::size_t fftLength;  // 0: as long as a segment
    } rows[] = {
        {12, 64, 0, 0, false, 1, 0},    {12, 1000, 0, 0, true, 4, 0},     {7, 130, 0, 0, false, 2, 0},
        {2, 777, 0, 0, true, 2, 0},     {12, 640, -90, 100, false, 1, 0}, {12, 333, -90, 100, true, 2, 0},
        {12, 500, 0, 0, false, 2, 200}, {12, 500, 0, 0, true, 2, 31},
    };
    for (const auto& row : rows) {
        const auto measure = [&row](bool kernels) {
            Bench bench = makeBench(kernels, row.taps);
            if (row.stop > row.start) {
                setBand(bench.estimator, sampleRate, row.start, row.stop, 2);
            }
            if (row.fftLength != 0) {
                bench.estimator.setFrequencyResolutionMethod(Resolution::windowLength);
                setFFTLength(bench.estimator, row.fftLength);
            }
            bench.feed({noise(60, 30000, row.columns, row.isComplex), noise(9, 30000, 1, false)}, row.frame);
            return bench;
        };
        const Bench plain = measure(false);
        const Bench kernel = measure(true);
        ASSERT_GT(plain.updates, 5);
        for (std::size_t signal = 0; signal < 2; ++signal) {
            SCOPED_TRACE(row.taps);
            const auto spectra = [signal](const Bench& bench) {
                return part(bench.outs[signal], bench.points(), bench.outs[signal].size() - bench.points());
            };
            expectClose(spectra(kernel), spectra(plain), 1e-13);
        }
    }
}

// Twice the group delay, 2 * 12 * 64 / 2 = 768 samples, are 12 segments; the bank is full with the 13th.
TEST(SpectrumEstimatorFilterBank, HybridStartShowsWelchSpectraWhileTheBankFills) {
    const Bench::Signal signal{{colouredNoise(4, 20 * bands)}, false};
    Bench hybrid = makeBench(true);
    hybrid.estimator.setUseWelchForFilterBankTransient(true);
    hybrid.estimator.setPlotMaxHoldTrace(true);
    Bench bank = makeBench(true);
    Bench welch;
    welch.usePlainSettings(sampleRate, bands, bands);
    welch.estimator.setWindow(Window::rectangular);
    welch.estimator.setForgettingFactor(0.0);
    for (std::size_t segment = 0; segment < 20; ++segment) {
        for (Bench* bench : {&hybrid, &bank, &welch}) {
            bench->feed({signal}, segment * bands, (segment + 1) * bands, bands);
        }
        SCOPED_TRACE(segment);
        EXPECT_EQ(hybrid.row(), segment < 12 ? welch.row() : bank.row());
        EXPECT_EQ(hybrid.record().maxHoldTrace == hybrid.row(), segment == 0 || segment == 12)
            << "begins with the bank";
        EXPECT_EQ(hybrid.estimator.isFilterbankInSteadyState(), segment >= 12);
        EXPECT_EQ(hybrid.estimator.isFilterbankInSteadyStateStart(), segment == 12);
    }
    // What does not concern the bank leaves its past alone; more taps empty it and begin the fill anew.
    bank.estimator.setPlotMaxHoldTrace(true);
    bank.feed({signal}, 0, bands, bands);
    EXPECT_GT(bank.record().numSamplesProcessed, 20 * bands);
    bank.estimator.setNumTapsPerBand(14);
    bank.feed({signal}, 0, bands, bands);
    EXPECT_EQ(bank.record().numSamplesProcessed, bands);
}

TEST(SpectrumEstimatorFilterBank, AveragingMayWaitForTheBank) {
    const Bench::Signal signal{{colouredNoise(4, 14 * bands)}, false};
    Bench single = makeBench(true);
    Bench waiting = makeBench(true);
    waiting.estimator.setForgettingFactor(1.0);
    waiting.estimator.setAllowTransientAveraging(false);
    Values thirteenth;
    for (std::size_t segment = 0; segment < 14; ++segment) {
        single.feed({signal}, segment * bands, (segment + 1) * bands, bands);
        waiting.feed({signal}, segment * bands, (segment + 1) * bands, bands);
        if (segment < 13) {
            EXPECT_EQ(waiting.row(), single.row()) << segment;
            thirteenth = single.row();
        }
    }
    EXPECT_NEAR(waiting.row()[9], (thirteenth[9] + single.row()[9]) / 2, 1e-15);
}

}  // namespace

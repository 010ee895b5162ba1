#include "EstimatorSupport.h"

namespace {

using Estimator = SpectrumEstimator;
using Set = std::function<void(Estimator&)>;

void setUp(Estimator& estimator, int frame = 256) {
    estimator.setup(1, {frame}, {frame}, {1}, {0}, true);
}

// Worked out by hand from the rules; a hann window has a noise bandwidth of 1.5 bins at every length from 3 on.
TEST(SpectrumEstimatorConfiguration, DerivesTheFiguresOfASetting) {
    const struct {
        std::string what;
        Set set;
        double rbw;
        std::size_t segment, fft, samplesPerUpdate, points;
        double first, last;
    } rows[] = {
        {"as made", [](Estimator&) {}, 9.765625, 1536, 1536, 1536, 1536, -767 * 10000.0 / 1536, 5000},
        {"one-sided", [](Estimator& e) { e.setFrequencyRange(Range::oneSided); }, 4.8828125, 3072, 3072, 3072, 1537, 0,
         5000},
        {"two-sided computes as one-sided", [](Estimator& e) { e.setFrequencyRange(Range::twoSided); }, 4.8828125, 3072,
         3072, 3072, 1537, 0, 5000},
        {"rectangular, RBW 15 Hz", [](Estimator& e) { e.setWindow(Window::rectangular), setRBW(e, 15); }, 10000.0 / 667,
         667, 1024, 667, 1024, -511 * 9.765625, 5000},
        {"window of 1000, half overlapping", [](Estimator& e) { setWindowLength(e, 1000), e.setOverlapPercent(50); },
         15, 1000, 1024, 500, 1024, -511 * 9.765625, 5000},
        {"window of 2000", [](Estimator& e) { setWindowLength(e, 2000); }, 7.5, 2000, 2000, 2000, 2000, -999 * 5.0,
         5000},
        {"odd one-sided transform",
         [](Estimator& e) { e.setFrequencyRange(Range::oneSided), setWindowLength(e, 100), setFFTLength(e, 1023); },
         150, 100, 1023, 100, 512, 0, 5000 - 5000.0 / 1023},
        {"bands of a frame", [](Estimator& e) { e.setFrequencyResolutionMethod(Resolution::numFrequencyBands); },
         15000.0 / 1024, 1024, 256, 1024, 256, -127 * 10000.0 / 256, 5000},
        {"custom window gives the length",
         [](Estimator& e) { e.setWindow(Window::custom), e.setCustomWindow(Values(300, 0.5)); }, 10000.0 / 300, 300,
         1024, 300, 1024, -511 * 9.765625, 5000},
        {"filter bank does not overlap",
         [](Estimator& e) { e.setMethod(Method::filterBank), e.setOverlapPercent(50), setRBW(e, 20); }, 20, 500, 500,
         500, 500, -249 * 20.0, 5000},
        {"same samples an update for all windows", [](Estimator& e) { e.setWindowInvariantSamplesPerUpdate(true); },
         15000.0 / 1024, 1024, 1024, 1024, 1024, -511 * 9.765625, 5000},
        {"longest segment 1000",
         [](Estimator& e) { e.setEnableMaxSegmentLengthThreshold(true), e.setMaximumSegmentLength(1000); }, 15, 1000,
         1024, 1536, 1024, -511 * 9.765625, 5000},
        // 40800 / 6002 leaves 6; Fs' = 8000 and bins of 4 Hz
        {"zoom by 6", [](Estimator& e) { setBand(e, 48000, -999.5, 3001, 6); }, 6, 2000, 2000, 12000, 1002, -1000,
         3004},
        // 40800 / 8002 leaves 5, made even; Fs' = 12000 and bins of 8 Hz
        {"zoom by 5 becomes 4", [](Estimator& e) { setBand(e, 48000, -4001, 3999, 12); }, 12, 1500, 1500, 6000, 1002,
         -4008, 4000},
        {"zoom by 3 stays off", [](Estimator& e) { setBand(e, 48000, -6000, 6000, 12); }, 12, 6000, 6000, 6000, 6000,
         -2999 * 8.0, 24000},
        // bin 613 is the last at or below 1000 Hz; the grid ends at 5000 Hz, and the stop lies one past its end
        {"spectrogram of a span beyond the band",
         [](Estimator& e) { setBand(e, 10000, 1000, 6000, 15), e.setShowSpectrogram(true); }, 15, 1000, 1024, 1000, 412,
         102 * 9.765625, 5000 + 9.765625},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Estimator estimator;
        row.set(estimator);
        setUp(estimator);
        const auto& record = estimator.getSpectrumMetaData();
        EXPECT_NEAR(record.rbw, row.rbw, 1e-12 * row.rbw) << "sums over a window of thousands";
        EXPECT_EQ(record.segmentLength, row.segment);
        EXPECT_EQ(record.fftLength, row.fft);
        EXPECT_EQ(record.numSamplesPerUpdate, row.samplesPerUpdate);
        EXPECT_EQ(record.spectrumLength, row.points);
        ASSERT_EQ(record.frequencyVector.size(), row.points);
        EXPECT_DOUBLE_EQ(record.frequencyVector.front(), row.first);
        EXPECT_DOUBLE_EQ(record.frequencyVector.back(), row.last);
        EXPECT_EQ(record.maxSegmentLengthMet, row.what.starts_with("longest"));
    }
}

TEST(SpectrumEstimatorConfiguration, TurnsAveragingSettingsIntoOneAnother) {
    constexpr double automatic = 0;
    const struct {
        Averaging method;
        double factorOption, vbwOption;
        std::size_t averagesOption;
        double factor, vbw;
        std::size_t averages;
    } rows[] = {
        // RBW 15 Hz and 1.5 bins of noise bandwidth: a video bandwidth is 10 / (2 pi) of (1 - ff) / ff
        {Averaging::exponential, 0.9, 10, 1, 0.9, 10 / (2 * M_PI * 9), 20},
        {Averaging::exponential, 0.0, 10, 1, 0.0, 5000, 1},
        {Averaging::exponential, 1.0, 10, 1, 1.0, 0, 100},
        {Averaging::running, 0.9, 10, 1, 0.0, 5000, 1},
        {Averaging::running, 0.9, 10, 2, 1.0 / 3, 20 / (2 * M_PI), 2},
        {Averaging::vbw, 0.9, 10 / (2 * M_PI), 1, 0.5, 10 / (2 * M_PI), 3},
        {Averaging::vbw, 0.5, automatic, 1, 0.9, 10 / (2 * M_PI * 9), 20},
    };
    for (const auto& row : rows) {
        Estimator estimator;
        setWindowLength(estimator, 1000);
        estimator.setAveragingMethod(row.method);
        estimator.setForgettingFactor(row.factorOption);
        estimator.setAutoVBW(row.vbwOption == automatic);
        estimator.setVBW(row.vbwOption);
        estimator.setSpectralAverages(row.averagesOption);
        setUp(estimator);
        const auto& record = estimator.getSpectrumMetaData();
        EXPECT_NEAR(record.forgettingFactor, row.factor, 1e-15);
        EXPECT_NEAR(record.vbw, row.vbw, 1e-12);
        EXPECT_EQ(record.numSpectralAverages, row.averages);
    }
}

TEST(SpectrumEstimatorConfiguration, SettersMarkWhatTheyUpset) {
    const struct {
        std::string what;
        Set set;
        bool changed, averaging, signals;
    } rows[] = {
        {"sampleRate", [](Estimator& e) { e.setSampleRate(9000); }, true, true, true},
        {"the same sampleRate", [](Estimator& e) { e.setSampleRate(10000); }, false, false, false},
        {"autoRBW", [](Estimator& e) { e.setAutoRBW(false); }, true, true, false},
        {"rbw while automatic", [](Estimator& e) { e.setRBW(3); }, false, false, false},
        {"windowLength while by RBW", [](Estimator& e) { e.setWindowLength(3); }, false, false, false},
        {"customWindow without one", [](Estimator& e) { e.setCustomWindow({1}); }, false, false, false},
        {"frequencyVector while automatic", [](Estimator& e) { e.setFrequencyVector({1}); }, false, false, false},
        {"window", [](Estimator& e) { e.setWindow(Window::kaiser); }, true, true, true},
        {"spectrumUnits", [](Estimator& e) { e.setSpectrumUnits(Units::watts); }, true, false, true},
        {"overlapPercent", [](Estimator& e) { e.setOverlapPercent(50); }, true, false, true},
        {"inputRange", [](Estimator& e) { e.setInputRange({2}); }, true, false, false},
        {"allowTransientAveraging", [](Estimator& e) { e.setAllowTransientAveraging(false); }, false, false, false},
        {"showSpectrum", [](Estimator& e) { e.setShowSpectrum(false); }, true, false, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Estimator estimator;
        setUp(estimator);
        row.set(estimator);
        EXPECT_EQ(estimator.isPropertyChanged(), row.changed);
        EXPECT_EQ(estimator.getResetAveragingStates(), row.averaging);
        EXPECT_EQ(estimator.needToResetSignalBuffers(), row.signals);
    }
    EXPECT_EQ(SpectrumEstimatorEnum::getWindowEnum("Hann"), Window::blackmanHarris) << "an unknown word is value 0";
    EXPECT_EQ(SpectrumEstimatorEnum::getSpectrumUnitsEnum("dbfs/hz"), Units::dbfsPerHz);
}

TEST(SpectrumEstimatorConfiguration, AnswersWithoutASetup) {
    Estimator estimator;
    EXPECT_EQ(estimator.getTargetSegmentLength(false, 15.0, 48000.0), 4800U);
    setUp(estimator);
    EXPECT_EQ(estimator.getSpectrumMetaData().segmentLength, 4800U);
    EXPECT_TRUE(estimator.isValidSampleRate(30.0));
    EXPECT_FALSE(estimator.isValidSampleRate(29.0));
    estimator.setFrequencyRange(Range::oneSided);
    EXPECT_FALSE(estimator.isValidSampleRate(30.0));
    estimator.setSampleRateForFrameSizeChange(96000.0);
    EXPECT_FALSE(estimator.isLocked());
    // Other channels at the same time: what the buffer holds is of no use.
    estimator.setup(1, {20000}, {20000}, {4}, {1}, true);
    Values out;
    estimator.computeSpectrum(Values(80000).data(), out, 0);
    EXPECT_EQ(out.size(), 3 * estimator.getSpectrumMetaData().spectrumLength);
    EXPECT_THROW(estimator.designMultirateFIR(out, 1024, std::size_t{1} << 53U, 140.0), std::length_error);
}

// Nothing is refused, and nothing is read or written outside a buffer (the sanitizers look on).
TEST(SpectrumEstimatorConfiguration, SurvivesSettingsThatMakeNoSense) {
    const Set nonsense[] = {
        [](Estimator& e) { e.setSampleRate(0); },
        [](Estimator& e) { e.setSampleRate(nan); },
        [](Estimator& e) { e.setFrequencyRange(Range::oneSided), setWindowLength(e, 0); },
        [](Estimator& e) { setFFTLength(e, 0); },
        [](Estimator& e) { setFFTLength(e, 1); },
        [](Estimator& e) { setFFTLength(e, 2), e.setMethod(Method::filterBank); },
        [](Estimator& e) { setRBW(e, -4); },
        [](Estimator& e) { e.setMaximumSegmentLength(50), setRBW(e, 0); },
        [](Estimator& e) { setBand(e, 10000, 3000, -3000, 15), e.setShowSpectrogram(true); },
        [](Estimator& e) { setBand(e, 10000, nan, 3000, 15), e.setShowSpectrogram(true); },
        [](Estimator& e) { setBand(e, 10000, 8000, 9000, 15), e.setShowSpectrogram(true); },
        [](Estimator& e) { e.setAutoFrequencyVector(false), e.setFrequencyVector({}); },
        [](Estimator& e) { e.setAutoFrequencyVector(false), e.setFrequencyVector(ramp(5, 2)); },
        [](Estimator& e) { e.setAutoTimeResolution(false), e.setTimeResolution(nan), e.setShowSpectrogram(true); },
        [](Estimator& e) { e.setMethod(Method::filterBank), e.setNumTapsPerBand(0); },
        [](Estimator& e) { e.setWindow(Window::custom), setWindowLength(e, 64), e.setCustomWindow(ramp(1, 3)); },
        [](Estimator& e) { e.setWindow(Window::custom); },
        [](Estimator& e) { e.setEnableMaxSegmentLengthThreshold(true), e.setMaximumSegmentLength(0); },
        // Harmless by themselves, but stores are made for them.
        [](Estimator& e) { e.setMethod(Method::filterBank); },
        [](Estimator& e) { e.setPlotMinHoldTrace(true), e.setFrequencyRange(Range::oneSided); },
        [](Estimator& e) { e.getTargetSegmentLength(false, 1.0, 48000.0), e.setOverlapPercent(90); },
        [](Estimator& e) { e.setInputDomain(SpectrumEstimator::InputDomain::frequency), e.setShowSpectrogram(true); },
    };
    const Values samples = colouredNoise(3, 4000);
    for (const Set& set : nonsense) {
        for (const int variant : {0, 1, 2, 3}) {
            const bool threshold = variant % 2 != 0;
            const bool betweenFrames = variant >= 2;
            Estimator estimator;
            setWindowLength(estimator, 512);
            estimator.setFrequencyResolutionMethod(Resolution::rbw);
            estimator.setPlotMaxHoldTrace(true);
            estimator.setEnableDesiredSegmentLengthThreshold(threshold);
            if (!betweenFrames) {
                set(estimator);
            }
            // Two signals of different sizes, the second a complex one with a single column: no channel at all.
            estimator.setup(2, {1000, 10}, {1000, 10}, {1, 1}, {0, 1}, true);
            Values out;
            for (std::size_t frame = 0; frame < 4; ++frame) {
                if (frame == 2 && betweenFrames) {
                    set(estimator);  // without a new setup
                }
                estimator.computeSpectrum(samples.data() + 1000 * frame, out, 0);
                estimator.computeSpectrum(samples.data(), out, 1);
                estimator.computeSpectrum(samples.data(), out, 2);
                estimator.processSpectrum(samples.data(), out, 0);
            }
            const auto& record = estimator.getSpectrumMetaData();
            EXPECT_EQ(record.frequencyVector.size(), record.spectrumLength);
            EXPECT_GE(record.segmentLength, 1U);
            EXPECT_GE(record.fftLength, 1U);
        }
    }
}

}  // namespace

// Signals of known properties as time samples through the spectrum estimator and the measurements behind it. The
// bounds come from the window, the resolution bandwidth and the averages: a bin of noise has a standard deviation of
// 4.34 dB / sqrt(K) after K averages; they stand at about four of those. More signals go through the whole program, see
// docs/conformance.md.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <random>

#include "DistortionMeasurementsFilter.h"
#include "FrequencyPeakFinderFilter.h"
#include "NumberText.h"
#include "PhaseNoiseFilter.h"
#include "SpectralMaskTesterFilter.h"
#include "SpectrumClient.h"
#include "SpectrumEstimatorFilter.h"
#include "SpectrumMeasurementQueries.h"

namespace dspwavedecks {
namespace {

using testsupport::feed;
using testsupport::QueryAnswer;
using testsupport::TestClient;
using testsupport::text;
using Values = std::vector<double>;

constexpr double sampleRate = 10240;
constexpr int windowLength = 1024;  // bins of 10 Hz
constexpr int numAverages = 64;

double dBm(double watts) {
    return 30 + 10 * std::log10(watts);
}
double tonePower(double amplitude) {
    return amplitude * amplitude / 2;
}

/// An estimator and measurements behind it, fed a signal frame by frame.
class SpectrumDeck {
public:
    explicit SpectrumDeck(std::vector<BaseFilter*> filters) : measurements(std::move(filters)) {
        estimator.tuneImpl(client.setup()
                               .addDouble("sampleRate", sampleRate)
                               .addChar("frequencyRange", "one-sided")
                               .addChar("frequencyResolutionMethod", "window-length")
                               .addDouble("windowLength", windowLength)
                               .addChar("averagingMethod", "running")
                               .addDouble("spectralAverages", numAverages)
                               .addLogical("plotMaxHoldTrace", true));
    }
    PropertyList setup() const { return client.setup(); }

    /// As many segments as are averaged, in frames that don't fit them.
    void run(const std::function<double(double)>& signal) {
        constexpr std::size_t frameLength = 1000;
        for (std::size_t done = 0; done < numAverages * windowLength; done += frameLength) {
            Values frame(frameLength);
            for (double& sample : frame) {
                sample = signal(time);
                time += 1 / sampleRate;
            }
            const Values spectrum = feed(estimator, frame);
            if (!spectrum.empty()) {
                ++numUpdates;
                for (BaseFilter* const measurement : measurements) {
                    feed(*measurement, spectrum);
                }
            }
        }
    }

    TestClient client;
    int numUpdates = 0;

private:
    SpectrumEstimatorFilter estimator;
    std::vector<BaseFilter*> measurements;
    double time = 0;
};

/// Tones of given frequencies and amplitudes in white noise.
std::function<double(double)> tones(std::vector<std::pair<double, double>> parts, double noise) {
    auto random = std::make_shared<std::mt19937>(1);
    return [parts = std::move(parts), noise, random](double time) {
        double sum = noise * std::normal_distribution<double>()(*random);
        for (const auto& [frequency, amplitude] : parts) {
            sum += amplitude * std::cos(2 * std::numbers::pi * frequency * time + frequency);
        }
        return sum;
    };
}

TEST(SignalsThroughTheDeck, aToneWithHarmonicsInNoise) {
    DistortionMeasurementsFilter distortion;
    FrequencyPeakFinderFilter peaks;
    SpectrumDeck deck({&distortion, &peaks});
    distortion.tuneImpl(deck.setup().addInt("numHarmonics", 4).addLogical("twoSidedSpectrum", false));
    peaks.tuneImpl(deck.setup().addDoubles("frequencyLimits", {0, sampleRate}));
    deck.run(tones({{1000, 1}, {2000, 1e-2}, {3000, 3e-3}, {4000, 1e-3}, {5000, 1e-3}}, 1e-4));
    ASSERT_GT(deck.numUpdates, 0);

    const auto record = *board::find<distortionStruct>(deck.client.board(), DistortionMeasurementsFilter::distortion);
    const double harmonics = tonePower(1e-2) + tonePower(3e-3) + tonePower(1e-3);
    const double noise = 1e-8 + tonePower(1e-3);  // the fifth harmonic is not asked for
    // Noise of 3e-11 W in a bin stands 42 dB below the weakest tone: 8.7 dB * 10^(-42/20) / sqrt(K) and less.
    EXPECT_NEAR(record.thd, 10 * std::log10(harmonics / tonePower(1)), 0.03);
    EXPECT_NEAR(record.sfdr, 40, 0.03);
    EXPECT_NEAR(record.snr, 10 * std::log10(tonePower(1) / noise), 0.03);
    EXPECT_EQ(record.numHarmonics, 4u);
    EXPECT_NEAR(record.harmonicPower[0], dBm(tonePower(1)), 0.001);
    EXPECT_NEAR(record.harmonicPower[2], dBm(tonePower(3e-3)), 0.03);
    EXPECT_EQ(record.harmonicFrequency[3], 4000);

    // Message, board and query tell of one spectrum.
    EXPECT_EQ(text(DistortionMeasurementsFilter::packageImpl(deck.client.name()), "SNR"), numberText(record.snr));
    EXPECT_EQ(QueryAnswer(answerDistortionMeasurements, deck.client).number("SINAD"), record.sinad);
    const auto found = *board::find<peakFinderStruct>(deck.client.board(), PeakFinderFilter::peakFinder);
    ASSERT_EQ(found.numPeaks, 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(found.peaks[i].location, record.harmonicFrequency[i]);
        EXPECT_NEAR(found.peaks[i].value, record.harmonicPower[i], 1e-9);
    }
}

// A phase that walks at random: c = variance of the phase a second, L(f) = c / (2 pi f)^2.
TEST(SignalsThroughTheDeck, aCarrierWithPhaseNoise) {
    PhaseNoiseFilter noise;
    SpectrumDeck deck({&noise});
    const Values spots{100, 200, 500};
    noise.tuneImpl(deck.setup().addDoubles("phaseNoiseFrequencyOffset", spots));
    const double levelAt100Hz = 1e-7;  // -70 dBc/Hz; the line is far narrower than the resolution bandwidth
    const double walk = levelAt100Hz * std::pow(2 * std::numbers::pi * 100, 2);
    std::mt19937 random(3);
    std::normal_distribution<double> step(0, std::sqrt(walk / sampleRate));
    double phase = 0;
    deck.run([&](double time) {
        phase += step(random);
        return std::cos(2 * std::numbers::pi * (sampleRate / 4) * time + phase);
    });
    ASSERT_TRUE(PhaseNoiseFilter::isDataReady(deck.client.name()));
    const auto& record = *board::find<phaseNoiseStruct>(deck.client.board(), PhaseNoiseFilter::phaseNoise);
    for (std::size_t i = 0; i < spots.size(); ++i) {
        const double expected = 10 * std::log10(levelAt100Hz * std::pow(100 / spots[i], 2));
        EXPECT_NEAR(record.spotPhaseNoise[0][0][i], expected, 4 * 4.34 / std::sqrt(numAverages)) << spots[i];
    }
    // Over 50 bins of an octave the errors of the bins average out to 0.1 dB; aliases of the skirt and the skirt of the
    // negative carrier add 0.15 dB.
    double mean = 0;
    std::size_t count = 0;
    for (std::size_t k = 0; k < record.numPoints[0][0]; ++k) {
        const double offset = record.frequencyOffset[0][0][k];
        if (offset > 500 && offset <= 1000) {
            mean += record.phaseNoise[0][0][k] + 20 * std::log10(offset / 100);
            ++count;
        }
    }
    EXPECT_NEAR(mean / static_cast<double>(count), -69.85, 0.4);
}

TEST(SignalsThroughTheDeck, aMaskWithSteps) {
    SpectralMaskTesterFilter mask;
    SpectrumDeck deck({&mask});
    mask.tuneImpl(deck.setup()
                      .addChar("enabledMasks", "upper-and-lower")
                      .addChar("upperMask", "0,900,900,1100,1100,5120,-20,-20,30,30,-20,-20")
                      .addChar("lowerMask", "1000,1000,20,20"));
    deck.run(tones({{1000, 1}}, 1e-3));
    const auto& record = *board::find<spectralMaskStruct>(deck.client.board(), SpectralMaskTesterFilter::spectralMask);
    EXPECT_EQ(record.numTotalTests, deck.numUpdates);
    EXPECT_EQ(record.successRate, 100);
    deck.run(tones({{1000, 1}, {1090, 1e-1}}, 1e-3));  // its flank is on the step, where the level below counts
    EXPECT_TRUE(record.isCurrentlyPassing);
    deck.run(tones({{1000, 1}, {1110, 1e-1}}, 1e-3));
    EXPECT_FALSE(record.isCurrentlyPassing);
    EXPECT_FALSE(record.upperMaskStatus);
    EXPECT_TRUE(record.lowerMaskStatus);
}

TEST(SignalsThroughTheDeck, aHoldTraceAfterItsToneHasGone) {
    FrequencyPeakFinderFilter peaks;
    SpectrumDeck deck({&peaks});
    peaks.tuneImpl(deck.setup()
                       .addInt("numPeaks", 1)
                       .addDoubles("frequencyLimits", {0, sampleRate})
                       .addLogical("normalTraceData", false)
                       .addLogical("maxHoldTraceData", true));
    deck.run(tones({{3000, 1}}, 1e-3));
    deck.run(tones({{2000, 0.5}}, 1e-3));
    const auto& record = *board::find<peakFinderStruct>(deck.client.board(), PeakFinderFilter::peakFinder);
    EXPECT_EQ(record.peaks.at(0).location, 3000);
    EXPECT_NEAR(record.peaks.at(0).value, dBm(tonePower(1)), 0.01);
    peaks.tuneImpl(TestClient::tune().addLogical("normalTraceData", true));
    deck.run(tones({{2000, 0.5}}, 1e-3));
    EXPECT_EQ(record.peaks.at(0).location, 2000);
}

}  // namespace
}  // namespace dspwavedecks

#include "EstimatorSupport.h"

namespace {

/// Bins as a transform numbers them, from 0 Hz up; a centred spectrum begins with the negative frequencies.
double binFromZero(const Values& row, std::size_t bin, bool centered) {
    return centered ? row.at((bin + (row.size() - 1) / 2) % row.size()) : row.at(bin);
}

// Two transforms of the same data in double precision differ by some eps * log2 N of the largest magnitude; the sums of
// the average and of the window's norm add a few eps. 1e-12 leaves a factor of 100.
constexpr double relativeToLargest = 1e-12;

TEST(SpectrumEstimatorWelch, AgreesWithAnIndependentImplementation) {
    std::ifstream file(std::string(SPECTRUM_VECTORS) + "/spectra.txt");
    std::string line;
    int rows = 0;
    for (; std::getline(file, line); ++rows) {
        std::istringstream row(line);
        std::string kind, range, type, window;
        std::size_t L = 0, N = 0, samples = 0, bin = 0;
        double overlap = 0, sum = 0, value = 0;
        row >> kind >> range >> type >> window >> L >> N >> overlap >> samples >> sum;
        SCOPED_TRACE(line.substr(0, 60));
        Bench bench;
        bench.usePlainSettings(48000.0, L, N);
        bench.estimator.setOverlapPercent(overlap);
        bench.estimator.setWindow(SpectrumEstimatorEnum::getWindowEnum(window));
        bench.estimator.setSpectrumType(SpectrumEstimatorEnum::getSpectrumTypeEnum(type));
        bench.estimator.setFrequencyRange(SpectrumEstimatorEnum::getFrequencyRangeEnum(range));
        const bool isComplex = kind == "complex";
        bench.feed({noise(1, samples, isComplex ? 2 : 1, isComplex)}, L + 7);
        const Values spectrum = bench.row();
        const double largest = *std::max_element(spectrum.begin(), spectrum.end());
        const double tolerance = relativeToLargest * largest;
        EXPECT_NEAR(std::accumulate(spectrum.begin(), spectrum.end(), 0.0), sum,
                    tolerance * static_cast<double>(spectrum.size()));
        while (row >> bin >> value) {
            ASSERT_NEAR(binFromZero(spectrum, bin, range == "centered"), value, tolerance) << "bin " << bin;
        }
    }
    EXPECT_EQ(rows, 204) << "the whole file";
}

}  // namespace

#include "SpectrumEstimator.h"
#include "Test.h"

namespace {

using Window = SpectrumEstimator::Window;

// The independent windows come from other formulas in double precision, or better. Windows are at most 1 and their
// terms few, so that both sides are good to some 1e-15 times the terms of the longest series.
constexpr double windowTolerance = 1e-12;

TEST(SpectrumEstimatorWindows, AgreeWithIndependentOnes) {
    std::ifstream file(std::string(SPECTRUM_VECTORS) + "/windows.txt");
    std::string line;
    int rows = 0;
    for (; std::getline(file, line); ++rows) {
        std::istringstream row(line);
        std::string name;
        std::size_t n = 0;
        double attenuation = 0;
        double enbw = 0;
        row >> name >> n >> attenuation >> enbw;
        SCOPED_TRACE(name + " " + std::to_string(n) + " " + std::to_string(attenuation));
        SpectrumEstimator estimator;
        estimator.setWindow(SpectrumEstimatorEnum::getWindowEnum(name));
        estimator.setSidelobeAttenuation(attenuation);
        estimator.computeENBW(n);
        ASSERT_EQ(estimator.getWindowData().size(), n);
        EXPECT_NEAR(estimator.getENBW(), enbw, windowTolerance * enbw);
        std::size_t index = 0;
        double value = 0;
        while (row >> index >> value) {
            ASSERT_NEAR(estimator.getWindowData().at(index), value, windowTolerance) << "element " << index;
        }
    }
    EXPECT_EQ(rows, 77) << "the whole file";
}

TEST(SpectrumEstimatorWindows, KeepTheirLength) {
    for (std::size_t n = 0; n < 4; ++n) {
        for (int window = 0; window < 8; ++window) {
            SpectrumEstimator estimator;
            estimator.setWindow(static_cast<Window>(window));
            estimator.computeENBW(n);
            EXPECT_EQ(estimator.getWindowData().size(), window == 7 ? 0 : n);
            if (n == 1 && window != 7) {
                EXPECT_EQ(estimator.getWindowData()[0], 1.0) << window;
                EXPECT_EQ(estimator.getENBW(), 1.0) << window;
            }
        }
    }
    Values kept{0.25, 0.5, 0.75};
    SpectrumEstimator::chebyshev(kept, 2, 60.0);
    EXPECT_EQ(kept, (Values{0.25, 0.5}));
    Values overflowing;
    EXPECT_THROW(SpectrumEstimator::kaiser(overflowing, 8, 7000.0), std::overflow_error);
    SpectrumEstimator::chebyshev(overflowing, 8, -3.0);
    EXPECT_TRUE(std::isnan(overflowing[3]));
}

TEST(SpectrumEstimatorWindows, CountNoiseBandwidthAndPower) {
    SpectrumEstimator estimator;
    const auto expect = [&estimator](double enbw, double power) {
        estimator.computeENBW(8);
        estimator.computeWindowPower();
        EXPECT_DOUBLE_EQ(estimator.getENBW(), enbw);
        EXPECT_DOUBLE_EQ(estimator.getWindowPower(), power);
    };
    expect(1.5, 3.0);  // hann: mean 1/2, mean square 3/8
    estimator.setWindow(Window::rectangular);
    expect(1.0, 8.0);
    estimator.setWindow(Window::custom);
    estimator.setCustomWindow({1, 2, 1});  // shorter than the segment: 8 * 6 / 16
    expect(3.0, 6.0);
    estimator.setCustomWindow(Values(16, 2.0));  // longer: 8 squares over the square of 16 values
    expect(8.0 * 32 / 1024, 64.0);
    estimator.setWindow(Window::blackmanHarris);
    estimator.setMethod(SpectrumEstimator::Method::filterBank);
    expect(1.0, 8.0);
}

}  // namespace

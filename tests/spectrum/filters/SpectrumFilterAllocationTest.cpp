// A program of its own: it counts every allocation.
#include <gtest/gtest.h>

#include "AllocationCounter.h"
#include "SpectrumFilterTestSupport.h"

namespace dspwavedecks {
namespace {

using testsupport::TestClient;

TEST(SpectrumEstimatorFilter, allocatesNothingInTheSteadyState) {
    TestClient client({2, 1});
    SpectrumEstimatorFilter filter;
    filter.tuneImpl(client.setup().addLogical("plotMaxHoldTrace", true));  // segments of 1536 samples
    const std::vector<double> frame = testsupport::noise(2 * 256);
    std::vector<double> out;
    int updates = 0;
    const auto run = [&](int frames) {
        for (int i = 0; i < frames; ++i) {
            filter.setInputLength(512);
            filter.filterImpl(frame.data(), out, 0);
            updates += out.empty() ? 0 : 1;
            filter.setInputLength(256);
            filter.filterImpl(frame.data(), out, 1);
        }
    };
    run(40);
    updates = 0;
    const long before = testsupport::allocations;
    run(60);
    EXPECT_EQ(0, testsupport::allocations - before);
    EXPECT_EQ(10, updates);  // frames with an update are among them
}

}  // namespace
}  // namespace dspwavedecks

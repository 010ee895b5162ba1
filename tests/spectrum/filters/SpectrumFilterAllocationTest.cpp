// A program of its own: it counts every allocation.
#include <gtest/gtest.h>

#include "AllocationCounter.h"
#include "SpectrumFilterTestSupport.h"

namespace dspwavedecks {
namespace {

using testsupport::PropertyList;
using testsupport::TestClient;

TEST(SpectrumEstimatorFilter, allocatesNothingInTheSteadyState) {
    using Options = PropertyList (*)(PropertyList);
    struct Row {
        const char* name;
        Options options;
        int framesAnUpdate;
    };
    constexpr Row rows[] = {
        {"Welch and a hold trace", [](PropertyList list) { return list.addLogical("plotMaxHoldTrace", true); }, 6},
        {"zoom",
         [](PropertyList list) {
             return list.addChar("frequencySpan", "start-and-stop-frequencies")
                 .addDouble("startFrequency", 100)
                 .addDouble("stopFrequency", 200)
                 .addLogical("autoRBW", false)
                 .addDouble("rbw", 2);
         },
         0},
        {"filter bank",
         [](PropertyList list) {
             return list.addChar("method", "filter-bank")
                 .addChar("frequencyResolutionMethod", "num-frequency-bands")
                 .addLogical("autoFFTLength", false)
                 .addDouble("fftLength", 512);
         },
         2},
        {"spectrogram", [](PropertyList list) { return list.addLogical("showSpectrogram", true); }, 6},
    };
    const std::vector<double> frame = testsupport::noise(2 * 256);
    for (const Row& row : rows) {
        TestClient client({2, 1});
        SpectrumEstimatorFilter filter;
        filter.tuneImpl(row.options(client.setup()));
        std::vector<double> out;
        int updates = 0;
        const auto run = [&](int frames) {
            updates = 0;
            for (int i = 0; i < frames; ++i) {
                filter.setInputLength(512);
                filter.filterImpl(frame.data(), out, 0);
                updates += out.empty() ? 0 : 1;
                filter.setInputLength(256);
                filter.filterImpl(frame.data(), out, 1);
            }
        };
        run(400);
        const long before = testsupport::allocations;
        run(120);
        EXPECT_EQ(0, testsupport::allocations - before) << row.name;
        // Frames with an update are among them.
        EXPECT_GE(updates, row.framesAnUpdate == 0 ? 1 : 120 / row.framesAnUpdate) << row.name;
    }
}

}  // namespace
}  // namespace dspwavedecks

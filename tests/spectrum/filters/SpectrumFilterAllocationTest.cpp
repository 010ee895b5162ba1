// A program of its own: it counts every allocation.

#include "LimitedAllocation.h"
#include "SpectrumFilterTestSupport.h"
#include "Test.h"

namespace {

TEST(SpectrumEstimatorFilter, allocatesNothingInTheSteadyState) {
    const struct {
        const char* name;
        PropertyList options;
        int framesAnUpdate;
    } rows[] = {
        {"Welch and a hold trace", optionList("plotMaxHoldTrace=true"), 6},
        {"zoom",
         optionList(
             "frequencySpan=start-and-stop-frequencies startFrequency=100 stopFrequency=200 autoRBW=false rbw=2"),
         120},
        {"filter bank",
         optionList(
             "method=filter-bank frequencyResolutionMethod=num-frequency-bands autoFFTLength=false fftLength=512"),
         2},
        {"spectrogram", optionList("showSpectrogram=true"), 6},
    };
    const Values frame = testsupport::noise(2 * 256);
    for (const auto& row : rows) {
        TestClient client({2, 1});
        SpectrumEstimatorFilter filter;
        filter.tuneImpl(client.setup().append(row.options));
        Values out;
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
        const long before = numAllocations();
        run(120);
        EXPECT_EQ(before, numAllocations()) << row.name;
        // Frames with an update are among them.
        EXPECT_GE(updates, 120 / row.framesAnUpdate) << row.name;
    }
}

}  // namespace

#include "AllocationCounter.h"
#include "DriverTest.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace {

/// Hands the data on.
class CopyStage : public wavedeck::WaveDeckTransformImpl {
public:
    void filterImpl(const double* data, Values& out, int) override { out.assign(data, data + inputLength); }
    bool isReadOnly() override { return false; }
};

TEST(DeckClient, AllocatesNothingInAFrameOfTheSteadyState) {
    for (const ChainKind kind : {ChainKind::Time, ChainKind::Spectrum, ChainKind::Frame}) {
        DeckClient client(factsOf(kind, {realSignal(1, 1.0, 1024), realSignal(1, 1.0, 1024)}));
        client.addStage("tap", std::make_shared<wavedeck::WaveDeckTransformImpl>());
        client.addStage("copy", std::make_shared<CopyStage>());
        client.addStage("channel_measurements_filter", std::make_shared<wavedeck::WaveDeckTransformImpl>());
        const long atFirst = allocations;
        client.setup();
        EXPECT_GT(allocations, atFirst) << "the driver's own allocations are counted";
        const std::vector<Values> frame(2, Values(1024, 1.0));
        for (int i = 0; i < 40; ++i) {
            client.frame(frame);
        }
        const long before = allocations;
        for (int i = 0; i < 100; ++i) {
            client.frame(frame);
        }
        EXPECT_EQ(allocations - before, 0) << chainKindName(kind);
    }
}

}  // namespace

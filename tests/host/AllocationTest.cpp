#include "DriverTest.h"
#include "LimitedAllocation.h"
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
        const long atFirst = numAllocations();
        client.setup();
        EXPECT_GT(numAllocations(), atFirst) << "the driver's own allocations are counted";
        const std::vector<Values> frame(2, Values(1024, 1.0));
        long before = 0;
        for (int i = 0; i < 140; ++i) {
            before = i == 40 ? numAllocations() : before;
            client.frame(frame);
        }
        EXPECT_EQ(numAllocations(), before) << chainKindName(kind);
    }
}

}  // namespace

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "AllocationCounter.h"
#include "DeckClient.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace {

using testsupport::allocations;
using wavedeck::driver::ChainKind;

/// Hands the data on.
class CopyStage : public wavedeck::WaveDeckTransformImpl {
public:
    void filterImpl(const double* data, std::vector<double>& out, int) override {
        out.assign(data, data + inputLength);
    }
    bool isReadOnly() override { return false; }
};

TEST(DeckClient, AllocatesNothingInAFrameOfTheSteadyState) {
    for (const ChainKind kind : {ChainKind::Time, ChainKind::Spectrum, ChainKind::Frame}) {
        wavedeck::driver::ClientFacts facts;
        facts.name = "allocations";
        facts.kind = kind;
        facts.signals.resize(2);
        wavedeck::driver::DeckClient client(facts);
        client.addStage("tap", std::make_shared<wavedeck::WaveDeckTransformImpl>());
        client.addStage("copy", std::make_shared<CopyStage>());
        client.addStage("channel_measurements_filter", std::make_shared<wavedeck::WaveDeckTransformImpl>());
        const long atFirst = allocations;
        client.setup();
        EXPECT_GT(allocations, atFirst) << "the driver's own allocations are counted";
        const std::vector<std::vector<double>> frame(2, std::vector<double>(1024, 1.0));
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

#include "BFInputPortParametersHandlerFilter.h"

#include "SpectrumEstimatorFilter.h"
#include "Test.h"
#include "TestClient.h"

namespace {

using Handler = BFInputPortParametersHandlerFilter;

struct Ports {
    bool frequencyVector, rbw, vbw;
};

/// A stage behind one data signal and the ports in use.
struct Rig {
    explicit Rig(Ports ports, std::vector<int> sizes) : client(std::vector<int>(sizes.size(), 1)) {
        client.frameSize = std::move(sizes);
        handler.tuneImpl(client.setup()
                             .addLogical("inputPortFrequencyVector", ports.frequencyVector)
                             .addLogical("inputPortRBW", ports.rbw)
                             .addLogical("inputPortVBW", ports.vbw));
    }
    bool comesIn(Ports ports) const {
        const std::string& id = client.name();
        return Handler::isFrequencyVectorSourceInputPort(id) == ports.frequencyVector &&
               Handler::isRBWSourceInputPort(id) == ports.rbw && Handler::isVBWSourceInputPort(id) == ports.vbw;
    }

    TestClient client;
    Handler handler;
};

// Two simulation frames in hand: two times, then the values.
const Values frequencies = {0, 1, 10, 20, 30, 11, 21, 31};
const Values bandwidths = {0, 1, 5, 7};

TEST(BFInputPortParametersHandlerFilter, findsItsPortsBehindTheData) {
    for (int bits = 0; bits < 8; ++bits) {
        const Ports ports{(bits & 4) != 0, (bits & 2) != 0, (bits & 1) != 0};
        std::vector<int> sizes = {4};
        std::vector<Values> frames = {{0, 4, 4, 4, 4}};
        if (ports.frequencyVector) {
            sizes.push_back(3);
            frames.push_back(frequencies);
        }
        for (const bool isUsed : {ports.rbw, ports.vbw}) {
            if (isUsed) {
                sizes.push_back(1);
                frames.push_back(bandwidths);
                frames.back().back() += static_cast<double>(sizes.size());  // each port a value of its own
            }
        }
        Rig rig(ports, sizes);
        const std::string& id = rig.client.name();
        EXPECT_TRUE(rig.comesIn({false, false, false}));
        feed(rig.handler, frames[0], 0);
        EXPECT_TRUE(rig.comesIn({false, false, false})) << "no port signal";
        for (std::size_t s = 1; s < frames.size(); ++s) {
            feed(rig.handler, frames[s], static_cast<int>(s));
        }
        EXPECT_TRUE(rig.comesIn(ports)) << bits;
        EXPECT_EQ(Handler::getFrequencyVector(id), ports.frequencyVector ? Values({10, 20, 30}) : Values());
        const double first = ports.frequencyVector ? 10 : 9;
        EXPECT_EQ(Handler::getRBW(id), ports.rbw ? first : 0);
        EXPECT_EQ(Handler::getVBW(id), ports.vbw ? first + (ports.rbw ? 1 : 0) : 0);
    }
}

TEST(BFInputPortParametersHandlerFilter, keepsWhatThePortsDeliveredLast) {
    Rig rig({true, true, true}, {4, 3, 1, 1});
    const std::string& id = rig.client.name();
    const auto nothing = [&] {
        for (int signal = 0; signal < 4; ++signal) {
            feed(rig.handler, {}, signal);
        }
    };
    rig.client.board().addCustomSetting(Handler::rbw, 12.5);  // of the estimator behind
    nothing();
    EXPECT_TRUE(rig.comesIn({false, false, false}));
    EXPECT_EQ(Handler::getRBW(id), 12.5);
    feed(rig.handler, frequencies, 1);
    feed(rig.handler, bandwidths, 2);
    feed(rig.handler, bandwidths, 3);
    rig.client.board().addCustomSetting(SpectrumEstimatorFilter::rbw, 7.25);
    EXPECT_EQ(Handler::getRBW(id), 7.25) << "one entry";
    nothing();
    EXPECT_EQ(Handler::getRBW(id), 7);
    EXPECT_EQ(Handler::getVBW(id), 7);
    EXPECT_EQ(Handler::getFrequencyVector(id).size(), 3u);
    feed(rig.handler, {0, 1, 2}, 1);  // shorter than the frame size says
    EXPECT_EQ(Handler::getFrequencyVector(id).size(), 3u);
    rig.client.frameSize[1] = 2;
    rig.handler.tuneImpl(rig.client.sizeChange());
    feed(rig.handler, {0, 1, 2}, 1);
    EXPECT_EQ(Handler::getFrequencyVector(id), Values({1, 2}));
    // A port that is switched off is one of the data for all who ask.
    rig.handler.tuneImpl(TestClient::tune("inputPortRBW=false"));
    EXPECT_TRUE(rig.comesIn({true, false, true}));
    // What another stage left under a key reads as nothing.
    rig.client.board().addCustomSetting(Handler::vbw, std::string("wide"));
    feed(rig.handler, bandwidths, 3);
    EXPECT_EQ(Handler::getVBW(id), 0);
}

}  // namespace

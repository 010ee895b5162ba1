#include "BFSimulationPacerFilter.h"

#include "Board.h"
#include "SimulationMetaDataFilter.h"
#include "Test.h"
#include "TestClient.h"

namespace {

TEST(BFSimulationPacerFilter, holdsOneFrameAfterTheDrift) {
    TestClient client({1, 1});
    board::addIfAbsent<double>(client.board(), SimulationMetaDataFilter::simTime);
    BFSimulationPacerFilter pacer;
    pacer.tuneImpl(client.setup());
    const struct {
        double simulation, data, rate;
        bool proceeds;
    } rows[] = {
        {11, 0, 0, true},      // no division by a time of zero
        {11, 10, 10, true},    //
        {11.1, 10, 11, true},  // 10 did not exceed the threshold
        {10, 10, 0, false},    // 11 did
        {5, 10, -50, true},   {11, 10, 10, true}, {nan, 10, nan, true}, {10, 10, 0, true},
    };
    for (const auto& row : rows) {
        client->setSimulationTime(row.simulation);
        board::write(client.board(), SimulationMetaDataFilter::simTime, row.data);
        const bool before = client->continueProcessing();
        feed(pacer, {1}, 0);
        EXPECT_EQ(before, client->continueProcessing());  // not the last signal
        feed(pacer, {1}, 1);
        EXPECT_EQ(row.proceeds, client->continueProcessing()) << row.simulation;
        const double rate = SimulationMetaDataFilter::packageImpl(client.name())->getValue<double>("simDriftRate");
        EXPECT_TRUE(row.rate != row.rate ? rate != rate : std::abs(rate - row.rate) < 1e-12) << rate;
    }
}

TEST(BFSimulationPacerFilter, answersTheSetupAlone) {
    TestClient client;
    BFSimulationPacerFilter pacer;
    EXPECT_TRUE(pacer.isActive());
    pacer.tuneImpl(client.setup("enableSimDriftRateThreshold=false simDriftRateThreshold=0"));
    EXPECT_FALSE(pacer.isActive());
    pacer.tuneImpl(TestClient::tune("enableSimDriftRateThreshold=true"));
    pacer.tuneImpl(TestClient::list("onInputSizeChange"));  // would miss its options if it were answered
    EXPECT_FALSE(pacer.isActive());

    board::addIfAbsent<double>(client.board(), SimulationMetaDataFilter::simTime, 10.0);
    board::write(client.board(), BFSimulationPacerFilter::simDriftRate, 0.001);
    feed(pacer, {1});
    EXPECT_FALSE(client->continueProcessing());  // a threshold of 0 holds on any positive rate
    pacer.tuneImpl(client.setup());
    EXPECT_EQ(0.0, board::read<double>(client.board(), BFSimulationPacerFilter::simDriftRate, 1.0));
    wavedeck::WaveDeckClientRegistry::sInstance.removeClient(client.name());
    EXPECT_NO_THROW(feed(pacer, {1})) << "outlives its client";
}

}  // namespace

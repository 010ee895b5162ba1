#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Catalogue.h"
#include "LoadedLibrary.h"
#include "QueryStructure.h"
#include "TestClient.h"
#include "streamplug/Exceptions.h"

namespace {

using testsupport::feed;
using testsupport::LoadedLibrary;
using testsupport::TestClient;

const LoadedLibrary& library() {
    static const LoadedLibrary loaded(DSPWAVEDECKS_LIBRARY);
    return loaded;
}

/// The names that are to be exported.
std::set<std::string> listedNames() {
    std::ifstream file(DSPWAVEDECKS_EXPORTED_NAMES);
    std::set<std::string> names;
    for (std::string name; std::getline(file, name);) {
        names.insert(name);
    }
    return names;
}

TEST(Exports, areTheListAndNothingElse) {
    std::set<std::string> exported;
    FILE* const pipe = popen("nm -D --defined-only " DSPWAVEDECKS_LIBRARY, "r");
    ASSERT_NE(nullptr, pipe);
    char line[512];
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        std::istringstream fields(line);
        std::string address, type, name;
        fields >> address >> type >> name;
        exported.insert(name);
    }
    EXPECT_EQ(0, pclose(pipe));
    EXPECT_EQ(listedNames(), exported);
}

TEST(Exports, carryVersionAndDate) {
    EXPECT_STREQ(DSPWAVEDECKS_VERSION, *library().find<const char* const*>("libdspwavedecksimpl_version"));
    const std::string date = *library().find<const char* const*>("libdspwavedecksimpl_build_date");
    EXPECT_TRUE(date == "unknown" || (date.size() == 20 && date[4] == '-' && date[19] == 'Z')) << date;
}

/// Every stage that the library makes so far, with its entry in the catalogue.
std::vector<const dspwavedecks::catalogue::Stage*> stagesSoFar(dspwavedecks::catalogue::StageKind kind) {
    const std::set<std::string> names = listedNames();
    std::vector<const dspwavedecks::catalogue::Stage*> result;
    for (const auto& stage : dspwavedecks::catalogue::stages) {
        if (stage.kind == kind && names.count(std::string(stage.name)) != 0) {
            result.push_back(&stage);
        }
    }
    return result;
}

// Two setups, tunes in mid-stream, a size change, a rollback, a reset, and destruction in an order unlike that of
// construction; the board stays.
TEST(Exports, makeStagesThatLiveTheirLife) {
    TestClient client({2, 2});
    client->setIsComplex({0, 1});
    std::vector<std::shared_ptr<wavedeck::WaveDeckTransformImpl>> stages;
    for (const auto* stage : stagesSoFar(dspwavedecks::catalogue::StageKind::Filter)) {
        SCOPED_TRACE(stage->name);
        auto filter = library().makeFilter(std::string(stage->name));
        EXPECT_NO_THROW(filter->isActive());
        for (int round = 0; round < 2; ++round) {
            filter->tuneImpl(client.setup());
            for (const int size : {4, 6, 0}) {
                client.frameSize = {size, size};
                filter->tuneImpl(client.sizeChange());
                for (int signal = 0; signal < 2; ++signal) {
                    feed(*filter, std::vector<double>(static_cast<std::size_t>(3 * size), 1.0), signal);
                }
                filter->tuneImpl(TestClient::tune().addChar("clientID", client.name()));
            }
            filter->rollbackImpl(TestClient::list("onRollback").addDouble("rollbacktime", 0.0));
            filter->resetImpl();
        }
        stages.push_back(std::move(filter));
    }
    const std::vector<std::string> keys = client.board().keys();
    std::rotate(stages.begin(), stages.begin() + 1, stages.end());
    while (!stages.empty()) {
        stages.pop_back();
    }
    EXPECT_EQ(keys, client.board().keys());
}

TEST(Exports, makeMessagesOfNoSignals) {
    TestClient client;
    for (const auto* stage : stagesSoFar(dspwavedecks::catalogue::StageKind::Strategy)) {
        SCOPED_TRACE(stage->name);
        const auto strategy = library().makeStrategy(std::string(stage->name));
        strategy->setClientID(client.name());
        EXPECT_EQ("updateDataAsync", strategy->getUpdateEventName());
        EXPECT_EQ("onProcessNoData", strategy->getNoDataEventName());
        Poco::SharedPtr<Poco::JSON::Object> message = new Poco::JSON::Object;
        std::vector<int> none;
        std::vector<std::string> ids;
        strategy->processDataAllSignals({}, 1, none, none, ids, message);
        EXPECT_TRUE(message->has("simulation"));
    }
}

TEST(Exports, answerQueriesBeforeAnythingRan) {
    TestClient client;
    const dspwavedecks::NbArrayPointer time(library().query("getSimulationTimeImpl", client.name()));
    EXPECT_EQ(0.0, nbGetScalar(time.get()));
    const dspwavedecks::NbArrayPointer data(library().query("getSimulationMetaDataImpl", client.name()));
    EXPECT_EQ(3, nbGetNumberOfFields(data.get()));
    EXPECT_STREQ("SimulationTime", nbGetFieldNameByNumber(data.get(), 0));
    EXPECT_STREQ("SamplesProcessed", nbGetFieldNameByNumber(data.get(), 1));
    EXPECT_STREQ("FramesProcessed", nbGetFieldNameByNumber(data.get(), 2));
    EXPECT_THROW(library().query("getSimulationTimeImpl", "nobody"), numbench::Exception);
}

}  // namespace

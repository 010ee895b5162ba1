#include <cstdio>
#include <set>

#include "DriverTest.h"
#include "QueryAnswer.h"
#include "streamplug/Exceptions.h"

namespace {

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
    FILE* const pipe = popen("nm -D --defined-only " STAGE_LIBRARY, "r");
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
    EXPECT_EQ(DSPWAVEDECKS_VERSION, stageLibrary().version());
    const std::string date = stageLibrary().buildDate();
    EXPECT_TRUE(date == "unknown" || (date.size() == 20 && date[4] == '-' && date[19] == 'Z')) << date;
}

TEST(Exports, areFoundByTheirNamesAndKindsAlone) {
    EXPECT_THROW(StageLibrary("libnosuchdeck.so"), DriverError);
    EXPECT_THROW((void)stageLibrary().makeFilter("no_such_filter"), DriverError);
    EXPECT_THROW((void)stageLibrary().makeFilter("dsp_wavedeck_time_data_strategy"), DriverError);
    EXPECT_THROW((void)stageLibrary().query("malloc"), DriverError);
    EXPECT_FALSE(stageLibrary().offers("malloc")) << "names of what the library depends on are not its own";
}

TEST(Exports, makeMessagesOfNoSignals) {
    TestClient client;
    for (const std::string& name : listedNames()) {
        if (!name.ends_with("_strategy")) {
            continue;
        }
        SCOPED_TRACE(name);
        const auto strategy = stageLibrary().makeStrategy(name);
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
    static auto* const time = stageLibrary().query("getSimulationTimeImpl");
    static auto* const facts = stageLibrary().query("getSimulationMetaDataImpl");
    TestClient client;
    const QueryAnswer metaData([](auto** left, auto** right) { facts(1, left, 1, right); }, client);
    EXPECT_EQ((std::vector<std::string>{"SimulationTime", "SamplesProcessed", "FramesProcessed"}), metaData.fields());
    const auto ask = [](auto** left, auto** right) { time(1, left, 1, right); };
    EXPECT_EQ(0.0, QueryAnswer(ask, client).number());
    wavedeck::WaveDeckClientRegistry::sInstance.removeClient(client.name());
    EXPECT_THROW(QueryAnswer(ask, client), numbench::Exception);
}

}  // namespace

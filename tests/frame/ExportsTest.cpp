#include <cstdio>
#include <set>

#include "DriverTest.h"
#include "QueryStructure.h"
#include "TestClient.h"
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
    TestClient client;
    const auto ask = [](const char* query, const std::string& name) {
        const NbArrayPointer argument(nbCreateString(name.c_str()));
        const nbArray* arguments[] = {argument.get()};
        nbArray* result = nullptr;
        stageLibrary().query(query)(1, &result, 1, arguments);
        return NbArrayPointer(result);
    };
    EXPECT_EQ(0.0, nbGetScalar(ask("getSimulationTimeImpl", client.name()).get()));
    const NbArrayPointer data = ask("getSimulationMetaDataImpl", client.name());
    EXPECT_EQ(3, nbGetNumberOfFields(data.get()));
    EXPECT_STREQ("SimulationTime", nbGetFieldNameByNumber(data.get(), 0));
    EXPECT_STREQ("SamplesProcessed", nbGetFieldNameByNumber(data.get(), 1));
    EXPECT_STREQ("FramesProcessed", nbGetFieldNameByNumber(data.get(), 2));
    EXPECT_THROW(ask("getSimulationTimeImpl", "nobody"), numbench::Exception);
}

}  // namespace

#include "SpectrumQueries.h"

#include <atomic>
#include <thread>

#include "Board.h"
#include "QueryAnswer.h"
#include "SimulationMetaDataFilter.h"
#include "SpectrumFilterTestSupport.h"
#include "Test.h"
#include "numbench/Exception.h"

namespace {

TEST(SpectrumQueries, giveTheRecord) {
    TestClient client({1, 2});
    EXPECT_FALSE(QueryAnswer(answerIsSpectrumAvailable, client).number());
    EXPECT_THROW(QueryAnswer(answerSpectrumData, client), numbench::Exception);
    client.board().addCustomSetting(SimulationMetaDataFilter::simTime, 2.5);
    spectrumEstimatorMetaDataStruct stored;
    stored.spectrumLength = 2;
    stored.numSpectrumBlocks = 2;
    stored.numSegments = 5;
    stored.numSamplesProcessed = 640;
    stored.numUpdatesProcessed = 10;
    stored.spectrogramChannel = 1;
    stored.isNewDataReady = true;
    stored.resetCachedNumSamplesProcessed = true;
    stored.frequencyVector = {0, 100};
    stored.numChannels = {1, 2};
    stored.spectrumData = {{1, 2, 3, 4}, {5, 6, 7, 8, 9, 10, 11, 12}};
    stored.maxHoldTrace = {1, 2, 3, 4, 5, 6};
    client.board().addCustomSetting(SpectrumEstimatorFilter::spectrumEstimatorMetaData, stored);
    auto* const record = board::find<spectrumEstimatorMetaDataStruct>(
        client.board(), SpectrumEstimatorFilter::spectrumEstimatorMetaData);

    QueryAnswer answers(answerSpectrumData, client);
    ASSERT_EQ(11u, answers.size());
    EXPECT_EQ(2.5, answers.number());
    EXPECT_EQ((Values{0, 100}), answers.numbers(1));
    EXPECT_EQ(1u, nbGetColumns(answers.array(1)));
    EXPECT_EQ((Values{3, 4, 7, 8, 11, 12}), answers.numbers(2));  // the newest of each channel
    EXPECT_EQ(2u, nbGetRows(answers.array(2)));
    EXPECT_EQ(3u, nbGetColumns(answers.array(2)));
    for (const std::size_t off : {3U, 4U, 5U}) {
        EXPECT_EQ(0u, nbGetNumberOfElements(answers.array(off)));
    }
    EXPECT_TRUE(nbIsLogical(answers.array(6)) && answers.number(6) == 1.0);
    EXPECT_EQ(2.0, answers.number(7));
    EXPECT_EQ(5.0, answers.number(8));
    EXPECT_EQ(100.0, answers.number(9));
    EXPECT_TRUE(nbIsLogical(answers.array(10)));
    EXPECT_TRUE(record->isNewDataReady);

    record->showSpectrum = false;
    record->showSpectrogram = true;
    record->plotMaxHoldTrace = true;
    record->plotMinHoldTrace = true;
    answers = QueryAnswer(answerSpectrumData, client);
    EXPECT_EQ(0u, nbGetNumberOfElements(answers.array(2)));
    EXPECT_EQ((Values{9, 10, 11, 12}), answers.numbers(3));  // all lines of the selected channel
    EXPECT_EQ(Values(12, 0.0), answers.numbers(4));          // no trace there
    EXPECT_EQ((Values{1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0}), answers.numbers(5));
    for (const std::uint64_t odd : {0u, 9u}) {  // no lines, a channel that is not there
        record->spectrogramChannel = odd;
        record->numSpectrumBlocks = odd;
        EXPECT_EQ(11u, QueryAnswer(answerSpectrumData, client).size());
    }
    record->spectrogramChannel = ~std::uint64_t{0};  // a channel of -1
    record->numSpectrumBlocks = 2;
    EXPECT_EQ(Values(4, 0.0), QueryAnswer(answerSpectrumData, client).numbers(3));

    EXPECT_TRUE(QueryAnswer(answerIsSpectrumAvailable, client).number());
    answers = QueryAnswer(answerIsNewSpectrumReady, client);
    EXPECT_EQ(1.0, answers.number());
    EXPECT_EQ(640.0, answers.number(1));
    EXPECT_EQ(640.0, QueryAnswer(answerNumSamplesProcessed, client).number());
    EXPECT_EQ(10.0, QueryAnswer(answerNumUpdatesProcessed, client).number());
    EXPECT_EQ(1.0, QueryAnswer(answerResetCachedNumSamplesProcessed, client).number());
    EXPECT_EQ(0.0, QueryAnswer(answerResetCachedNumSamplesProcessed, client).number());
}

TEST(SpectrumQueries, tellOnceThatTheCounterBeganAgain) {
    TestClient client;
    SpectrumEstimatorFilter filter;
    filter.tuneImpl(client.setup("defaultSegmentLength=64"));
    const auto isReset = [&] { return QueryAnswer(answerResetCachedNumSamplesProcessed, client).number() != 0.0; };
    feed(filter, noise(200));
    isReset();
    feed(filter, noise(200));
    EXPECT_FALSE(isReset());
    filter.tuneImpl(client.setup());  // restarts
    feed(filter, noise(10));
    feed(filter, noise(10));  // later frames do not take it back
    EXPECT_TRUE(isReset());
    EXPECT_FALSE(isReset());
    feed(filter, noise(200));
    EXPECT_FALSE(isReset());
}

// Meant for the thread sanitizer: frames, tunes and messages on one thread, queries on another.
TEST(SpectrumQueries, mayComeFromAnotherThread) {
    TestClient client({2});
    SimulationMetaDataFilter metaData;
    SpectrumEstimatorFilter filter;
    const auto setUp = [&] {
        metaData.tuneImpl(client.setup());
        filter.tuneImpl(client.setup("defaultSegmentLength=64 plotMaxHoldTrace=true showSpectrogram=true"));
    };
    setUp();
    std::atomic<bool> isRunning{true};
    std::thread reader([&] {
        while (isRunning) {
            const QueryAnswer answers(answerSpectrumData, client);
            EXPECT_EQ(nbGetNumberOfElements(answers.array(1)), static_cast<std::size_t>(answers.number(7)));
            for (const auto query : {answerIsNewSpectrumReady, answerResetCachedNumSamplesProcessed,
                                     answerNumUpdatesProcessed, answerNumSamplesProcessed, answerIsSpectrumAvailable}) {
                QueryAnswer(query, client);
            }
        }
    });
    JsonArrayPool arrays;
    for (int i = 0; i < 300; ++i) {
        const Values frame = noise(2 * 100);
        feed(metaData, frame);
        feed(filter, frame);
        if (i % 10 == 3) {
            filter.tuneImpl(TestClient::tune().addDouble("defaultSegmentLength", i % 20 == 3 ? 32 : 48));
        }
        if (i % 50 == 7) {
            setUp();
        }
        SpectrumEstimatorFilter::packageImpl(client.name());
        SpectrumEstimatorFilter::packageImpl(client.name(), 0, 2, 48, arrays);
    }
    isRunning = false;
    reader.join();
}

}  // namespace

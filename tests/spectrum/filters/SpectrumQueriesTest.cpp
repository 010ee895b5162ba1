#include "SpectrumQueries.h"

#include <atomic>
#include <thread>

#include "Board.h"
#include "QueryStructure.h"
#include "SimulationMetaDataFilter.h"
#include "SpectrumFilterTestSupport.h"
#include "Test.h"
#include "numbench/Exception.h"

namespace {

using Query = void (*)(nbArray**, const nbArray**);

std::vector<NbArrayPointer> ask(Query query, const std::string& client) {
    const NbArrayPointer name(nbCreateString(client.c_str()));
    const nbArray* arguments[] = {name.get()};
    nbArray* results[12] = {};
    query(results, arguments);
    std::vector<NbArrayPointer> answers;
    for (nbArray* result : results) {
        if (result != nullptr) {
            answers.emplace_back(result);
        }
    }
    return answers;
}

Values values(const NbArrayPointer& array) {
    const double* const first = nbGetDoubles(array.get());
    return {first, first + nbGetNumberOfElements(array.get())};
}

TEST(SpectrumQueries, giveTheRecord) {
    TestClient client({1, 2});
    EXPECT_FALSE(nbGetScalar(ask(answerIsSpectrumAvailable, client.name())[0].get()));
    EXPECT_THROW(ask(answerSpectrumData, client.name()), numbench::Exception);
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

    auto answers = ask(answerSpectrumData, client.name());
    ASSERT_EQ(11u, answers.size());
    EXPECT_EQ(2.5, nbGetScalar(answers[0].get()));
    EXPECT_EQ((Values{0, 100}), values(answers[1]));
    EXPECT_EQ(1u, nbGetColumns(answers[1].get()));
    EXPECT_EQ((Values{3, 4, 7, 8, 11, 12}), values(answers[2]));  // the newest of each channel
    EXPECT_EQ(2u, nbGetRows(answers[2].get()));
    EXPECT_EQ(3u, nbGetColumns(answers[2].get()));
    for (const int off : {3, 4, 5}) {
        EXPECT_EQ(0u, nbGetNumberOfElements(answers[static_cast<std::size_t>(off)].get()));
    }
    EXPECT_TRUE(nbIsLogical(answers[6].get()) && nbGetScalar(answers[6].get()) == 1.0);
    EXPECT_EQ(2.0, nbGetScalar(answers[7].get()));
    EXPECT_EQ(5.0, nbGetScalar(answers[8].get()));
    EXPECT_EQ(100.0, nbGetScalar(answers[9].get()));
    EXPECT_TRUE(nbIsLogical(answers[10].get()));
    EXPECT_TRUE(record->isNewDataReady);

    record->showSpectrum = false;
    record->showSpectrogram = true;
    record->plotMaxHoldTrace = true;
    record->plotMinHoldTrace = true;
    answers = ask(answerSpectrumData, client.name());
    EXPECT_EQ(0u, nbGetNumberOfElements(answers[2].get()));
    EXPECT_EQ((Values{9, 10, 11, 12}), values(answers[3]));  // all lines of the selected channel
    EXPECT_EQ(Values(12, 0.0), values(answers[4]));          // no trace there
    EXPECT_EQ((Values{1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0}), values(answers[5]));
    for (const std::uint64_t odd : {0u, 9u}) {  // no lines, a channel that is not there
        record->spectrogramChannel = odd;
        record->numSpectrumBlocks = odd;
        EXPECT_EQ(11u, ask(answerSpectrumData, client.name()).size());
    }
    record->spectrogramChannel = ~std::uint64_t{0};  // a channel of -1
    record->numSpectrumBlocks = 2;
    EXPECT_EQ(Values(4, 0.0), values(ask(answerSpectrumData, client.name())[3]));

    EXPECT_TRUE(nbGetScalar(ask(answerIsSpectrumAvailable, client.name())[0].get()));
    answers = ask(answerIsNewSpectrumReady, client.name());
    EXPECT_EQ(1.0, nbGetScalar(answers[0].get()));
    EXPECT_EQ(640.0, nbGetScalar(answers[1].get()));
    EXPECT_EQ(640.0, nbGetScalar(ask(answerNumSamplesProcessed, client.name())[0].get()));
    EXPECT_EQ(10.0, nbGetScalar(ask(answerNumUpdatesProcessed, client.name())[0].get()));
    EXPECT_EQ(1.0, nbGetScalar(ask(answerResetCachedNumSamplesProcessed, client.name())[0].get()));
    EXPECT_EQ(0.0, nbGetScalar(ask(answerResetCachedNumSamplesProcessed, client.name())[0].get()));
}

TEST(SpectrumQueries, tellOnceThatTheCounterBeganAgain) {
    TestClient client;
    SpectrumEstimatorFilter filter;
    filter.tuneImpl(client.setup("defaultSegmentLength=64"));
    const auto isReset = [&] {
        return nbGetScalar(ask(answerResetCachedNumSamplesProcessed, client.name())[0].get()) != 0.0;
    };
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
            const auto answers = ask(answerSpectrumData, client.name());
            EXPECT_EQ(nbGetNumberOfElements(answers[1].get()), static_cast<std::size_t>(nbGetScalar(answers[7].get())));
            for (const Query query :
                 {answerIsNewSpectrumReady, answerResetCachedNumSamplesProcessed, answerNumUpdatesProcessed,
                  answerNumSamplesProcessed, answerIsSpectrumAvailable}) {
                ask(query, client.name());
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

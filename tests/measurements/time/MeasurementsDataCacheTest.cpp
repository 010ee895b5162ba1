#include "MeasurementsDataCache.h"

#include <new>

#include "Test.h"

namespace {

Values tenTimes(Values values) {
    for (double& value : values) {
        value *= 10.0;
    }
    return values;
}

/// A frame of two channels, the second of which holds ten times the time.
void add(MeasurementsDataCache& cache, const Values& times) {
    cache.addData(joined({times, Values(times.size(), -1.0), tenTimes(times)}).data(), 1, times.size());
}

void expectTimes(const MeasurementsDataCache& cache, const Values& times) {
    EXPECT_EQ(cache.getTime(), times);
    EXPECT_EQ(cache.getData(), tenTimes(times));
}

TEST(MeasurementsDataCache, dropsWhatIsOlderThanTheLastFrame) {
    MeasurementsDataCache cache;
    add(cache, {-3, -2, -1});
    add(cache, {-1, 0, 1});  // the same stamp again is stored again
    expectTimes(cache, {-3, -2, -1, -1, 0, 1});
    add(cache, {-2, -1, 0.5});  // a stretch played again: dropped, and the last time is that of this frame
    EXPECT_EQ(cache.lastTime, 0.5);
    add(cache, {0.75, 2, 0.6});  // stamps may fall back within a frame
    expectTimes(cache, {-3, -2, -1, -1, 0, 1, 0.75, 2, 0.6});
    cache.addData(nullptr, 0, 0);
    EXPECT_EQ(cache.size(), 9u);
}

TEST(MeasurementsDataCache, fullRingLosesItsOldestAndKeepsItsOldestOnResize) {
    MeasurementsDataCache cache;
    add(cache, ramp(0, 5001));
    EXPECT_EQ(cache.size(), 5000u);
    EXPECT_EQ(cache.timeAt(0), 1.0);
    // Ranges across the seam of the ring.
    EXPECT_EQ(cache.getTimeInRange({4997, 5000}), Values({4998, 4999, 5000}));
    EXPECT_EQ(cache.getDataInRange({0, 2}), Values({10, 20}));
    EXPECT_EQ(cache.getTimeAndDataInRange({4999, 5000}), Values({5000, 50000}));
    EXPECT_TRUE(cache.getTimeAndDataInRange({7, 7}).empty());
    EXPECT_TRUE(cache.getDataInRange({8, 7}).empty());

    EXPECT_THROW(cache.setCapacity(std::numeric_limits<unsigned long>::max()), std::length_error);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they stop the program at such a size
    EXPECT_THROW(cache.setCapacity(1ul << 55), std::bad_alloc);
#endif
    EXPECT_EQ(cache.size(), 5000u);
    cache.setCapacity(3);
    expectTimes(cache, {1, 2, 3});
    EXPECT_EQ(cache.capacity, 5000u);  // the owner's to set
    cache.setCapacity(5);
    add(cache, {5000, 5001, 5002});
    expectTimes(cache, {2, 3, 5000, 5001, 5002});
}

TEST(MeasurementsDataCache, followsRollbacks) {
    const struct {
        double rollbackTime;
        Values kept;
    } rows[] = {
        {2.5, {1, 2}},        // between two samples: all older ones stay
        {3.0, {1, 2, 3}},     // on a sample: it stays
        {4.0, {1, 2, 3, 4}},  // on the newest
        {9.0, {1, 2, 3, 4}},  // later than all
        {0.75, {}},           // before the first sample, behind the start
        {0.5, {}},            // at the start
        {-7.0, {}},           // before the start
        {nan, {1, 2, 3, 4}},
    };
    for (const auto& row : rows) {
        MeasurementsDataCache cache;
        cache.onRollback(row.rollbackTime, 0.5);
        add(cache, {1, 2, 3, 4});
        cache.onRollback(row.rollbackTime, 0.5);
        expectTimes(cache, row.kept);
        // After a partial rollback samples enter from the last time offered on, after a full one all do.
        add(cache, {3.5, 4.5});
        expectTimes(cache, joined({row.kept, row.rollbackTime <= 0.5 ? Values{3.5, 4.5} : Values{4.5}}));
    }
}

TEST(MeasurementsDataCache, frameBasedInputSpreadsTheStampsOfItsFrames) {
    // Two frames of three samples at 1 and 2 s, one channel before the one asked for.
    const Values frame{1, 2, 0, 0, 0, 0, 0, 0, 11, 21, 12, 22, 13, 23};
    MeasurementsDataCache cache;
    cache.addDataFrameBased(frame.data(), 1, 2, 3, 0.75);
    EXPECT_EQ(cache.getTime(), Values({1, 1.25, 1.5, 2, 2.25, 2.5}));
    EXPECT_EQ(cache.getData(), Values({11, 12, 13, 21, 22, 23}));
    EXPECT_EQ(cache.lastTime, 2.5);
    cache.addDataFrameBased(frame.data(), 1, 2, 3, 0.75);
    EXPECT_EQ(cache.size(), 6u);
}

// Random frames, with stamps that fall back and repeat, NaN among them, rollbacks and resizes: the searches give what
// scans give, whether or not the times rise, and both rings stay of one length.
TEST(MeasurementsDataCache, searchesAgreeWithScans) {
    std::mt19937 random(23);
    for (int run = 0; run < 300; ++run) {
        MeasurementsDataCache cache;
        cache.setCapacity(20 + random() % 80);
        double now = 0.0;
        for (int step = 0; step < 30; ++step) {
            Values times;
            for (std::size_t i = 0; i <= random() % 20; ++i) {
                now += static_cast<double>(random() % 3);
                const bool odd = run % 2 == 0 && random() % 50 == 0;
                times.push_back(odd ? (random() % 4 ? now - 5.0 : nan) : now);
            }
            add(cache, times);
            if (random() % 6 == 0) {
                cache.onRollback(now - static_cast<double>(random() % 15), -1.0);
            }
            if (random() % 10 == 0) {
                cache.setCapacity(20 + random() % 80);
            }
            const Values all = cache.getTime();
            ASSERT_EQ(all.size(), cache.getData().size());
            for (double time = now - 20.0; time < now + 2.0; time += 0.5) {
                const auto first = std::find_if(all.begin(), all.end(), [&](double t) { return t >= time; });
                const auto last = std::find_if(all.rbegin(), all.rend(), [&](double t) { return t <= time; });
                ASSERT_EQ(cache.firstNotBefore(time), static_cast<unsigned long>(first - all.begin()));
                ASSERT_EQ(cache.endNotAfter(time), static_cast<unsigned long>(all.rend() - last));
            }
        }
    }
}

}  // namespace

#include <sys/resource.h>
#include <sys/wait.h>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include "FftFixture.h"

namespace {

using fft_test::Signal;
using fftbridge::fftwApi;

/// Steps until all is measured; false if that takes more than a minute.
bool improveAll() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (fftwApi::getInstance().improvePlans()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

TEST(PlanImprovement, GoesOnBesideTransformsAndPlanningInOtherThreads) {
    constexpr std::size_t length = 48;
    std::atomic<bool> stop{false};
    std::atomic<int> started{0};
    std::vector<std::thread> threads;
    Values errors(3);
    for (unsigned t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            fftbridge::FftPlanCache cache;
            Signal in(4 * length);
            Signal out(4 * length);
            in.fillWithNoise(t);
            for (std::size_t i = 0; !stop || i < 4; ++i) {
                const std::size_t howMany = 1 + (i + t) % 4;
                fftbridge::interleavedFFT1D<double, 2>({}, cache, in.data(), out.data(), length, howMany, -1, false);
                errors[t] = std::max(errors[t], i % 64 < 4 ? fft_test::relativeError(in, out, length, howMany, -1) : 0);
                started += i == 3 ? 1 : 0;
            }
        });
    }
    while (started < 3) {
        std::this_thread::yield();
    }
    EXPECT_GE(fftwApi::getInstance().numQuickPlans(), 4U);
    EXPECT_TRUE(improveAll());
    EXPECT_EQ(fftwApi::getInstance().numQuickPlans(), 0U);
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_LE(*std::max_element(errors.begin(), errors.end()), 30 * std::numeric_limits<double>::epsilon());
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no child is left behind";
    EXPECT_EQ(errno, ECHILD);
}

TEST(PlanImprovement, ReachesCachesInUseAndIsRememberedWhenALengthComesBack) {
    const fftbridge::FftPlanKey key{40, 1, -1, true};
    {
        fftbridge::FftPlanCache cache;
        const fftbridge::FftPlan* quick = &cache.find({}, key, false);
        EXPECT_EQ(fftwApi::getInstance().numQuickPlans(), 1U);
        EXPECT_EQ(&cache.find({}, key, false), quick);
        EXPECT_TRUE(improveAll());
        EXPECT_NE(&cache.find({}, key, false), quick);
    }
    fftbridge::FftPlanCache cache;
    cache.find({}, key, false);
    EXPECT_EQ(fftwApi::getInstance().numQuickPlans(), 0U) << "known from before";
    cache.find({}, {36, 1, -1, true}, true);
    EXPECT_EQ(fftwApi::getInstance().numQuickPlans(), 0U) << "measured before it was used";
}

TEST(PlanImprovement, LeavesAPlanThatCannotBeMeasured) {
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit noMoreFiles = before;
    noMoreFiles.rlim_cur = 0;
    fftbridge::FftPlanCache cache;
    cache.find({}, {52, 1, -1, true}, false);
    setrlimit(RLIMIT_NOFILE, &noMoreFiles);
    EXPECT_TRUE(improveAll());
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(fftwApi::getInstance().numQuickPlans(), 1U);
}

TEST(PlanImprovement, WorksWhereTheProgramIgnoresItsChildren) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    fftbridge::FftPlanCache cache;
    cache.find({}, {44, 1, -1, true}, false);
    EXPECT_TRUE(improveAll());
    EXPECT_EQ(fftwApi::getInstance().numQuickPlans(), 0U);
    std::signal(SIGCHLD, before);
}

}  // namespace

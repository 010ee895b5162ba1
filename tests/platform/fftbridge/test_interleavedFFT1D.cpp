#include "FftFixture.h"

namespace {

using fft_test::Signal;

struct TransformCase {
    std::size_t length;
    std::size_t howMany;
    int sign;
    std::size_t inOffset;  // doubles
    std::size_t outOffset;
};

class Transform : public testing::TestWithParam<TransformCase> {};

TEST_P(Transform, EqualsTheDefiningSumAndKeepsItsInput) {
    const auto [length, howMany, sign, inOffset, outOffset] = GetParam();
    Signal in(length * howMany, inOffset);
    Signal out(length * howMany, outOffset);
    in.fillWithNoise(7);
    const Values before = in.copy();
    fftbridge::FftPlanCache cache;
    fftbridge::interleavedFFT1D<double, 2>({}, cache, in.data(), out.data(), length, howMany, sign, false);
    EXPECT_EQ(in.copy(), before);
    // The rms error of an FFT grows like eps * sqrt(log2 N); the largest of N bins, and prime lengths by convolution,
    // stay below eps * 4 * (1 + log2 N).
    const double bound = 4 * std::numeric_limits<double>::epsilon() * (1 + std::log2(static_cast<double>(length)));
    EXPECT_LE(fft_test::relativeError(in, out, length, howMany, sign), bound);
}

INSTANTIATE_TEST_SUITE_P(Lengths, Transform,
                         testing::Values(TransformCase{1, 3, -1, 0, 0}, TransformCase{2, 1, -1, 0, 0},
                                         TransformCase{7, 2, -1, 0, 0}, TransformCase{60, 5, 1, 0, 0},
                                         TransformCase{251, 3, -1, 0, 0}, TransformCase{256, 2, -1, 1, 0},
                                         TransformCase{256, 2, -1, 0, 1}, TransformCase{97, 2, 1, 3, 5},
                                         TransformCase{1024, 1, -1, 0, 0}, TransformCase{1000, 2, -1, 0, 0}));

TEST(Transform, OfNothingTouchesNothing) {
    fftbridge::FftPlanCache cache;
    double in = 1;
    double out = 2;
    fftbridge::interleavedFFT1D<double, 2>({}, cache, &in, &out, 0, 4, -1, false);
    fftbridge::interleavedFFT1D<double, 2>({}, cache, &in, &out, 4, 0, -1, false);
    EXPECT_EQ(out, 2);
}

TEST(PlanCache, HoldsTheLatestPlansAndSharesThemWithOthers) {
    const std::size_t before = fftbridge::fftwApi::getInstance().numQuickPlans();
    const auto numPlans = [&] { return fftbridge::fftwApi::getInstance().numQuickPlans() - before; };
    Signal in(64);
    Signal out(64);
    in.fillWithNoise(1);
    const auto transform = [&](fftbridge::FftPlanCache& cache, std::size_t length) {
        fftbridge::interleavedFFT1D<double, 2>({.maximumCachedPlans = 2}, cache, in.data(), out.data(), length, 1, -1,
                                               false);
    };
    fftbridge::FftPlanCache first;
    for (const std::size_t length : {18U, 20U, 18U, 22U}) {  // 22 comes when 20 was used longest ago
        transform(first, length);
    }
    EXPECT_EQ(numPlans(), 2U);
    {
        fftbridge::FftPlanCache second;
        transform(second, 18);
        EXPECT_EQ(numPlans(), 2U) << "18 is shared";
        transform(second, 20);
        EXPECT_EQ(numPlans(), 3U) << "20 was dropped by the first";
        const fftbridge::FftPlanCache copy = second;
        const std::lock_guard lock(fftbridge::fftwApi::fftwAccessMutex_);
        second = {};
    }
    EXPECT_EQ(numPlans(), 2U);
}

TEST(AlignedMemory, BeginsOnACacheLine) {
    for (const std::size_t size : {0U, 1U, 16U, 100U, 4097U}) {
        void* memory = fftbridge::fftwApi::malloc(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 64, 0U) << size;
        fftbridge::fftwApi::free(memory);
    }
    fftbridge::fftwApi::free(nullptr);
}

}  // namespace

#include "SpectrumBuffer.h"

#include "Test.h"

namespace {

SpectrumBuffer makeBuffer(std::size_t segmentLength, double overlapPercent, bool zeros, std::size_t channels = 1,
                          bool complex = false) {
    SpectrumBuffer buffer;
    buffer.setup(3, channels, complex);
    buffer.setSegmentLength(segmentLength);
    buffer.setOverlapPercent(overlapPercent);
    buffer.setZerosInFirstSegment(zeros);
    return buffer;
}

Values contents(const SpectrumBuffer& buffer, std::size_t channel = 0) {
    const double* run = buffer.run<double>(channel);
    return Values(run, run + buffer.size(channel));
}

/// Segments as their definition has them: hop * k on the samples with the zeros, if any, in front.
Values segmentsOf(const Values& samples, std::size_t L, std::size_t O, bool zeros) {
    const Values padded = joined({Values(zeros ? O : 0, 0.0), samples});
    Values segments;
    for (std::size_t start = 0; start + L <= padded.size(); start += L - O) {
        append(segments, part(padded, start, L));
    }
    return segments;
}

TEST(SpectrumBuffer, RoundsTheOverlap) {
    const struct {
        std::size_t L;
        double percent;
        std::size_t overlap;
    } rows[] = {
        {8, 50, 4},      {5, 50, 2},  {5, 51, 3},   {128, 100, 127}, {1, 100, 0}, {3, 99, 2},
        {1000, 99, 990}, {10, -3, 0}, {10, 250, 9}, {0, 50, 0},      {10, 0, 0},  {10, nan, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SpectrumBuffer::computeNumOverlapSamples(row.L, row.percent), row.overlap)
            << row.L << " samples, " << row.percent << " percent";
    }
    // The constructor's overlap counts from the first change on, not from a setter that repeats the value.
    SpectrumBuffer buffer(1, 1, false, 8, 50.0);
    buffer.setSegmentLength(8);
    EXPECT_EQ(buffer.getNumOverlapSamples(), 0U);
    buffer.setOverlapPercent(25.0);
    EXPECT_EQ(buffer.getNumOverlapSamples(), 2U);
    buffer.setup(5, 1, false);
    EXPECT_EQ(buffer.getNumSignals(), 1U);
    EXPECT_TRUE(buffer.getZerosInFirstSegment());
}

TEST(SpectrumBuffer, AnyCutOfTheInputGivesTheSameSegments) {
    std::mt19937 random(7);
    const Values samples = ramp(1, 1000);
    for (const std::size_t L : {1U, 2U, 7U, 64U, 300U}) {
        for (const double percent : {0.0, 33.0, 50.0, 75.0, 99.0, 100.0}) {
            for (const bool zeros : {true, false}) {
                SpectrumBuffer buffer = makeBuffer(L, percent, zeros);
                const Values expected = segmentsOf(samples, L, buffer.getNumOverlapSamples(), zeros);
                Values segments;
                for (std::size_t position = 0; position < samples.size();) {
                    const std::size_t frame = std::min<std::size_t>(
                        random() % 5 == 0 ? random() % 400 : random() % 9 + 1, samples.size() - position);
                    buffer.addData(samples.data() + position, 0, frame, 1, false);
                    position += frame;
                    append(segments, part(contents(buffer), 0, buffer.getNumSegments(0) * L));
                    buffer.clear();
                }
                ASSERT_EQ(segments, expected) << L << " samples, " << percent << " percent, zeros " << zeros;
            }
        }
    }
}

TEST(SpectrumBuffer, KeepsChannelsApartAndSkipsToTheImaginaryParts) {
    // Two complex channels of three samples, then a real one, in one complex store.
    const Values frame{1, 2, 3, 4, 5, 6, 10, 20, 30, 40, 50, 60};
    SpectrumBuffer buffer = makeBuffer(3, 0, true, 3, true);
    buffer.addData(frame.data(), 0, 3, 2, true);
    buffer.addData(frame.data() + 3, 1, 3, 2, true);
    buffer.addData(frame.data(), 2, 3, 1, false);
    using Complex = std::complex<double>;
    EXPECT_EQ(buffer.run<double>(0), nullptr);
    EXPECT_EQ(buffer.run<Complex>(3), nullptr);
    EXPECT_EQ(buffer.run<Complex>(0)[2], Complex(3, 30));
    EXPECT_EQ(buffer.run<Complex>(1)[0], Complex(4, 40));
    EXPECT_EQ(buffer.run<Complex>(2)[1], Complex(2, 0));
}

TEST(SpectrumBuffer, DropsWholeBlocksOnly) {
    SpectrumBuffer buffer = makeBuffer(4, 50, false, 2);
    buffer.setSegmentsPerBlock(3);
    EXPECT_FALSE(buffer.isReady());
    const Values samples = ramp(1, 17);
    buffer.addData(samples.data(), 1, 17, 2, false);
    EXPECT_FALSE(buffer.isReady()) << "channel 0 alone counts";
    buffer.addData(samples.data(), 0, 17, 2, false);
    EXPECT_EQ(buffer.getNumSegments(0), 7U);
    EXPECT_TRUE(buffer.isReady());
    buffer.clear();
    EXPECT_EQ(contents(buffer), (Values{13, 14, 15, 16, 15, 16, 17}));
    EXPECT_EQ(contents(buffer, 1), contents(buffer, 0));
    EXPECT_FALSE(buffer.isReady());
    buffer.flush();
    EXPECT_EQ(buffer.size(0), 0U);
    EXPECT_EQ(buffer.size(9), 0U);
}

}  // namespace

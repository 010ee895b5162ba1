#include "AlignedVector.h"
#include "GroupKernels.h"
#include "PlainPolyphase.h"
#include "PolyphaseBank.h"
#include "PolyphaseKernels.h"
#include "Test.h"

namespace {

using Complex = std::complex<double>;

constexpr double guard = -12345;

/// A call with some segments of one length.
struct Call {
    std::size_t segmentLength;
    std::size_t numSegments;
};

struct Setting {
    const char* name;
    std::size_t numBands;
    std::size_t numTaps;
    std::vector<Call> calls;
};

const std::vector<Setting> settings{
    {"Usual", 128, 12, {{128, 8}, {128, 1}, {128, 3}, {128, 17}, {128, 2}, {128, 1}, {128, 5}}},
    {"OddLengths", 67, 7, {{67, 9}, {67, 1}, {67, 6}, {67, 1}, {67, 4}}},
    {"NarrowerThanAVector", 3, 5, {{3, 20}, {3, 1}, {3, 7}}},
    {"OneBand", 1, 4, {{1, 30}, {1, 1}}},
    {"OneTap", 70, 1, {{70, 3}, {70, 9}}},
    {"NoTaps", 9, 0, {{9, 3}, {12, 2}}},
    {"ManyTaps", 72, 40, {{72, 50}, {72, 1}, {72, 11}}},
    {"ShortSegments", 130, 6, {{70, 9}, {70, 1}, {70, 3}}},
    {"LongSegments", 66, 6, {{150, 4}, {66, 3}, {132, 2}, {200, 1}, {66, 9}}},
    {"SingleSegments", 140, 5, {{20, 1}, {90, 1}, {140, 1}, {140, 1}, {70, 1}, {140, 1}, {140, 1}, {140, 2}, {140, 1}}},
    {"ChangingLengths", 140, 5, {{140, 7}, {65, 5}, {0, 2}, {139, 9}, {20, 12}, {140, 3}, {300, 2}, {64, 8}, {140, 9}}},
};

Values magnitudes(Values values) {
    std::transform(values.begin(), values.end(), values.begin(), [](double x) { return std::abs(x); });
    return values;
}

/// Rows of the plain bank, and beside each value the sum of the magnitudes that its rounding error goes by.
class Expectation {
public:
    Expectation(const Setting& setting, const Values& branches)
        : bank_(branches, setting.numBands, setting.numTaps),
          magnitudes_(magnitudes(branches), setting.numBands, setting.numTaps),
          row_(setting.numBands),
          sizes_(setting.numBands),
          numTaps_(setting.numTaps) {}

    void addSegment(const std::vector<Complex>& samples) {
        std::vector<Complex> sizes(samples.size());
        std::transform(samples.begin(), samples.end(), sizes.begin(),
                       [](Complex x) { return Complex(std::abs(x.real()), std::abs(x.imag())); });
        bank_.addSegment(samples.data(), samples.size());
        magnitudes_.addSegment(sizes.data(), sizes.size());
        bank_.takeRow(row_.data());
        magnitudes_.takeRow(sizes_.data());
    }

    void compare(const double* row) const {
        // numTaps + 1 roundings at most in each of the two sums.
        const double factor = static_cast<double>(numTaps_ + 1) * std::numeric_limits<double>::epsilon();
        for (std::size_t band = 0; band < row_.size(); ++band) {
            EXPECT_LE(std::abs(row[2 * band] - row_[band].real()), factor * sizes_[band].real()) << band;
            EXPECT_LE(std::abs(row[2 * band + 1] - row_[band].imag()), factor * sizes_[band].imag()) << band;
        }
    }

private:
    PlainPolyphase<Complex> bank_;
    PlainPolyphase<Complex> magnitudes_;
    std::vector<Complex> row_;
    std::vector<Complex> sizes_;
    std::size_t numTaps_;
};

/// Taps and a channel's past for the bank under test.
struct Stores {
    Stores(const Setting& setting, const Values& branches, polyphase::SampleKind kind)
        : taps(polyphase::tapStoreSize(setting.numBands, setting.numTaps)),
          delays(polyphase::delayStoreSize(setting.numBands, setting.numTaps, kind) + 1) {
        polyphase::arrangeTaps(branches.data(), setting.numBands, setting.numTaps, taps.data());
        delays.back() = guard;
    }
    AlignedVector<double> taps;
    AlignedVector<double> delays;
};

/// The place of a setting is the last of the parameters.
class PolyphaseBank : public testing::TestWithParam<std::tuple<InstructionSet, polyphase::SampleKind, std::size_t>> {};

TEST_P(PolyphaseBank, EqualsThePlainBankInAnyOrderOfCalls) {
    const auto [set, kind, place] = GetParam();
    const Setting& setting = settings[place];
    if (!isSupported(set)) {
        GTEST_SKIP() << "not on this machine";
    }
    const bool isComplex = kind == polyphase::SampleKind::complex;
    const Values branches = gaussianNoise(setting.numBands * setting.numTaps, 3);
    Stores stores(setting, branches, kind);
    Expectation expected(setting, branches);
    const std::size_t stride = 2 * setting.numBands + 3;
    unsigned seed = 10;
    for (const auto& [length, numSegments] : setting.calls) {
        SCOPED_TRACE(std::to_string(numSegments) + " segments of " + std::to_string(length));
        const std::size_t planes = isComplex ? 2 : 1;
        const Values samples = gaussianNoise(length * numSegments * planes, ++seed);
        Values rows(numSegments * stride, guard);
        polyphase::analyzeWith(polyphase::groupKernelFor(set), {setting.numBands, setting.numTaps, stores.taps.data()},
                               kind, stores.delays.data(), samples.data(), length, numSegments,
                               polyphase::Output::complexRows, rows.data(), stride);
        for (std::size_t g = 0; g < numSegments; ++g) {
            std::vector<Complex> segment(length);
            for (std::size_t i = 0; i < length; ++i) {
                const double* sample = samples.data() + (g * length + i) * planes;
                segment[i] = {sample[0], isComplex ? sample[1] : 0.0};
            }
            expected.addSegment(segment);
            expected.compare(rows.data() + g * stride);
            for (std::size_t i = 2 * setting.numBands; i < stride; ++i) {
                EXPECT_EQ(rows[g * stride + i], guard);
            }
        }
    }
    EXPECT_EQ(stores.delays.back(), guard);
}

const auto nameOfCase = [](const auto& info) {
    const auto& [set, kind, place] = info.param;
    const char* const sets[] = {"Portable", "Avx2", "Avx512"};
    const bool isReal = kind == polyphase::SampleKind::real;
    return settings[place].name + std::string(isReal ? "Real" : "Complex") + sets[static_cast<int>(set)];
};
INSTANTIATE_TEST_SUITE_P(Settings, PolyphaseBank,
                         testing::Combine(testing::Values(InstructionSet::portable, InstructionSet::avx2,
                                                          InstructionSet::avx512),
                                          testing::Values(polyphase::SampleKind::real, polyphase::SampleKind::complex),
                                          testing::Range(std::size_t{0}, settings.size())),
                         nameOfCase);

TEST(PolyphaseKernels, AreTheBankWithOneSegmentACall) {
    const Setting setting{"", 36, 4, {}};
    const Values branches = gaussianNoise(setting.numBands * setting.numTaps, 3);
    Stores real(setting, branches, polyphase::SampleKind::real);
    Stores complex(setting, branches, polyphase::SampleKind::complex);
    Expectation expectedReal(setting, branches);
    Expectation expectedComplex(setting, branches);
    const int one = 1;
    const std::size_t n = setting.numBands;
    for (unsigned segment = 0; segment < 20; ++segment) {
        const Values samples = gaussianNoise(2 * n, 100 + segment);
        const std::vector<Complex> realSamples(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(n));
        const auto* const pairs = reinterpret_cast<const Complex*>(samples.data());
        const std::vector<Complex> complexSamples(pairs, pairs + n);
        Values upper(n), lower(n);
        std::vector<Complex> complexUpper(n), complexLower(n);
        processHalide_PolyphaseAnalysisRRD(samples.data(), real.taps.data(), real.delays.data(), upper.data(),
                                           lower.data(), n, setting.numTaps, 1, n, n, 1, 1, &one, &one);
        processHalide_PolyphaseAnalysisCRD(complexSamples.data(), complex.taps.data(),
                                           reinterpret_cast<Complex*>(complex.delays.data()), complexUpper.data(),
                                           complexLower.data(), n, setting.numTaps, 1, n, n, 1, 1, &one, &one);
        expectedReal.addSegment(realSamples);
        const std::vector<Complex> realRow(lower.begin(), lower.end());
        expectedReal.compare(reinterpret_cast<const double*>(realRow.data()));
        expectedComplex.addSegment(complexSamples);
        expectedComplex.compare(reinterpret_cast<const double*>(complexLower.data()));
    }
}

TEST(PolyphaseBank, KeepsWhatIsNotFiniteInItsBand) {
    constexpr std::size_t n = 20;
    const Setting setting{"", n, 3, {}};
    Stores stores(setting, Values(3 * n, 1.0), polyphase::SampleKind::real);
    Values samples(6 * n, 1.0);
    samples[5] = infinity;
    Values rows(6 * 2 * n);
    polyphase::analyze({n, 3, stores.taps.data()}, polyphase::SampleKind::real, stores.delays.data(), samples.data(), n,
                       6, rows.data(), 2 * n);
    for (std::size_t g = 0; g < 6; ++g) {
        for (std::size_t band = 0; band < n; ++band) {
            const bool isHit = band == 5 && g >= 1 && g <= 3;  // the segment after, and two more by the taps
            EXPECT_EQ(std::isinf(rows[g * 2 * n + 2 * band]), isHit) << g << " " << band;
            EXPECT_EQ(rows[g * 2 * n + 2 * band + 1], 0);
        }
    }
}

}  // namespace

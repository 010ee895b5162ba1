// The polyphase bank: its filters against the sample-by-sample form and against the multiply-add peak of the machine,
// and the whole bank (filters, transforms, powers) against its bare transforms.

#include "AlignedVector.h"
#include "GroupKernels.h"
#include "PlainPolyphase.h"
#include "Rivals.h"
#include "VectorMath.h"
#include "fftbridge.h"

#include <random>
#include <string>

namespace {

using bench::compare;
using dspwavedecks::AlignedVector;
using dspwavedecks::InstructionSet;
namespace polyphase = dspwavedecks::polyphase;
using Complex = std::complex<double>;

constexpr std::size_t numBands = 1024;
constexpr std::size_t numTaps = 12;
constexpr std::size_t rowStride = 2 * numBands + 136;  // no power of two, as the estimator has it

AlignedVector<double> noise(std::size_t n) {
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    AlignedVector<double> values(n);
    std::generate(values.begin(), values.end(), [&] { return normal(random); });
    return values;
}

struct Variant {
    InstructionSet set;
    polyphase::SampleKind kind;
    std::size_t numSegments;                                                             ///< in a frame
    std::size_t numFrames() const { return std::max<std::size_t>(8 / numSegments, 1); }  ///< in a round
};

/// A channel with a frame of samples that is filtered over and over.
class Channel {
public:
    explicit Channel(const Variant& variant) : variant_(variant) {
        polyphase::arrangeTaps(branches_.data(), numBands, numTaps, taps_.data());
    }
    void filter() {
        for (std::size_t frame = 0; frame < variant_.numFrames(); ++frame) {
            filterFrame();
        }
    }
    void transform() {
        for (std::size_t g = 0; g < numSegments(); ++g) {
            transformRow(g % variant_.numSegments);
        }
    }
    void filterTransformAndSquare() {
        for (std::size_t frame = 0; frame < variant_.numFrames(); ++frame) {
            filterFrame();
            for (std::size_t g = 0; g < variant_.numSegments; ++g) {
                transformRow(g);
                dspwavedecks::vectormath::scaledPower(spectrum_.data(), 0.5, power_.data(), numBands);
            }
        }
    }
    std::size_t numSegments() const { return variant_.numSegments * variant_.numFrames(); }
    std::size_t numSamples() const { return numSegments() * numBands; }
    const AlignedVector<double>& samples() const { return samples_; }
    const AlignedVector<double>& branches() const { return branches_; }

private:
    void filterFrame() {
        polyphase::analyzeWith(polyphase::groupKernelFor(variant_.set), {numBands, numTaps, taps_.data()},
                               variant_.kind, delays_.data(), samples_.data(), numBands, variant_.numSegments,
                               polyphase::Output::complexRows, rows_.data(), rowStride);
    }
    void transformRow(std::size_t g) {
        fftbridge::interleavedFFT1D<double, 2>({}, plans_, rows_.data() + g * rowStride, spectrum_.data(), numBands, 1,
                                               -1, true);
    }

    Variant variant_;
    AlignedVector<double> branches_{noise(numBands * numTaps)};
    AlignedVector<double> taps_ = AlignedVector<double>(polyphase::tapStoreSize(numBands, numTaps));
    AlignedVector<double> delays_ = AlignedVector<double>(polyphase::delayStoreSize(numBands, numTaps, variant_.kind));
    AlignedVector<double> samples_{noise(variant_.numSegments * numBands * 2)};
    AlignedVector<double> rows_ = AlignedVector<double>(variant_.numSegments * rowStride);
    AlignedVector<double> spectrum_ = AlignedVector<double>(2 * numBands);
    AlignedVector<double> power_ = AlignedVector<double>(numBands);
    fftbridge::FftPlanCache plans_;
};

template <class Sample>
void filtersAgainstPlain(benchmark::State& state, const Variant& variant) {
    Channel channel(variant);
    PlainPolyphase<Sample> plain({channel.branches().begin(), channel.branches().end()}, numBands, numTaps);
    AlignedVector<double> row(2 * numBands);
    const auto* samples = reinterpret_cast<const Sample*>(channel.samples().data());
    compare(
        state, channel.numSamples(), [&] { channel.filter(); },
        [&] {
            for (std::size_t g = 0; g < channel.numSegments(); ++g) {
                plain.addSegment(samples + g % variant.numSegments * numBands, numBands);
                plain.takeRow(reinterpret_cast<Complex*>(row.data()));
            }
        });
    state.counters["times_faster"] = 1 / state.counters["ratio"];
}

void bankAgainstTransforms(benchmark::State& state, const Variant& variant) {
    Channel channel(variant);
    compare(
        state, channel.numSamples(), [&] { channel.filterTransformAndSquare(); }, [&] { channel.transform(); });
}

#if defined(__x86_64__)
typedef double Vector __attribute__((vector_size(32)));

/// As many multiply-adds as the filters need for `n` samples, on registers alone.
__attribute__((target("avx2,fma"))) double multiplyAdds(std::size_t n) {
    Vector sums[10] = {};
    const Vector factor = Vector{} + 0.999;
    for (std::size_t i = 0; i < n * numTaps / 40; ++i) {
        for (Vector& sum : sums) {
            asm volatile("vfmadd213pd %1, %1, %0" : "+x"(sum) : "x"(factor));
        }
    }
    double total = 0;
    for (const Vector& sum : sums) {
        total += sum[0];
    }
    return total;
}

void filtersAgainstPeak(benchmark::State& state, const Variant& variant) {
    Channel channel(variant);
    compare(
        state, channel.numSamples(), [&] { channel.filter(); },
        [&] { benchmark::DoNotOptimize(multiplyAdds(channel.numSamples())); });
}
#endif

void addBenchmark(const std::string& name, void (*run)(benchmark::State&, const Variant&), const Variant& variant) {
    const char* const sets[] = {"portable", "avx2", "avx512"};
    benchmark::RegisterBenchmark(
        (name + "/" + sets[static_cast<int>(variant.set)] + "/segments:" + std::to_string(variant.numSegments)).c_str(),
        run, variant)
        ->Iterations(static_cast<benchmark::IterationCount>(8000 / (variant.numFrames() * variant.numSegments)))
        ->UseManualTime();
}

const bool registered = [] {
    using polyphase::SampleKind;
    for (const InstructionSet set : {InstructionSet::portable, InstructionSet::avx2, InstructionSet::avx512}) {
        for (const std::size_t numSegments : {std::size_t{1}, std::size_t{8}, std::size_t{64}}) {
            if (isSupported(set)) {
                const Variant real{set, SampleKind::real, numSegments};
                const Variant complex{set, SampleKind::complex, numSegments};
                addBenchmark("filters_to_plain_real", filtersAgainstPlain<double>, real);
                addBenchmark("filters_to_plain_complex", filtersAgainstPlain<Complex>, complex);
                addBenchmark("bank_to_transforms_real", bankAgainstTransforms, real);
                addBenchmark("bank_to_transforms_complex", bankAgainstTransforms, complex);
            }
        }
    }
#if defined(__x86_64__)
    if (isSupported(InstructionSet::avx2)) {
        addBenchmark("filters_to_peak_real", filtersAgainstPeak, {InstructionSet::avx2, SampleKind::real, 8});
    }
#endif
    return true;
}();

}  // namespace

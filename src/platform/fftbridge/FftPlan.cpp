#include "FftPlan.h"

#include <cstddef>
#include <memory>
#include <mutex>

#include "fftwApi.h"

namespace fftbridge {

namespace {

struct ApiFree {
    void operator()(fftw_complex* buffer) const noexcept { fftwApi::free(buffer); }
};
using Scratch = std::unique_ptr<fftw_complex, ApiFree>;

Scratch makeScratch(const FftPlanKey& key) {
    return Scratch(static_cast<fftw_complex*>(fftwApi::malloc(key.length * key.count * sizeof(fftw_complex))));
}

fftw_plan makePlan(const FftPlanKey& key, unsigned effort) {
    // Measuring overwrites the buffers, so that it must never see the caller's.
    const Scratch in = makeScratch(key);
    const Scratch out = makeScratch(key);
    const auto length = static_cast<std::ptrdiff_t>(key.length);
    const fftw_iodim64 transform{length, 1, 1};
    const fftw_iodim64 batch{static_cast<std::ptrdiff_t>(key.count), length, length};
    const unsigned flags = effort | FFTW_PRESERVE_INPUT | (key.aligned ? 0U : unsigned{FFTW_UNALIGNED});
    return fftw_plan_guru64_dft(1, &transform, 1, &batch, in.get(), out.get(), key.sign, flags);
}

struct PlanDestruction {
    void operator()(fftw_plan plan) const noexcept { fftw_destroy_plan(plan); }
};

std::shared_ptr<const FftPlan> share(fftw_plan plan) {
    std::unique_ptr<fftw_plan_s, PlanDestruction> owned(plan);  // until the shared plan has its memory
    if (owned == nullptr) {
        return nullptr;
    }
    auto shared = std::make_shared<const FftPlan>(plan);
    static_cast<void>(owned.release());
    return shared;
}

}  // namespace

std::shared_ptr<const FftPlan> FftPlan::createQuick(const FftPlanKey& key) {
    return share(makePlan(key, FFTW_ESTIMATE));
}

std::shared_ptr<const FftPlan> FftPlan::createFromWisdom(const FftPlanKey& key) {
    return share(makePlan(key, FFTW_MEASURE | FFTW_WISDOM_ONLY));
}

void FftPlan::measure(const FftPlanKey& key) {
    fftw_destroy_plan(makePlan(key, FFTW_MEASURE));
}

FftPlan::~FftPlan() {
    const std::lock_guard lock(fftwApi::fftwAccessMutex_);
    fftw_destroy_plan(plan_);
}

void FftPlan::execute(const double* in, double* out) const noexcept {
    // FFTW asks for a pointer to non-const, though a plan that preserves its input only reads there.
    auto* input = reinterpret_cast<fftw_complex*>(const_cast<double*>(in));
    fftw_execute_dft(plan_, input, reinterpret_cast<fftw_complex*>(out));
}

}  // namespace fftbridge

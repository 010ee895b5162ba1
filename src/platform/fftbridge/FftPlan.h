#pragma once

#include "FftPlanKey.h"

#include <fftw3.h>

#include <memory>

namespace fftbridge {

/// One plan of FFTW: out of place, input preserved. It never changes, so that any number of threads may run it at once
/// on buffers of their own. The static functions
/// need `fftwApi::fftwAccessMutex_`; the destructor takes it itself.
class FftPlan {
public:
    /// A plan by rules of thumb, made in microseconds up to a millisecond; null if FFTW has none.
    static std::shared_ptr<const FftPlan> createQuick(const FftPlanKey& key);
    /// The measured plan if accumulated wisdom knows it, made in microseconds; else null.
    static std::shared_ptr<const FftPlan> createFromWisdom(const FftPlanKey& key);
    /// Adds the measured plan to FFTW's wisdom by running candidates, for tens of milliseconds up to seconds. It takes
    /// no lock itself, so that a forked child can call it.
    static void measure(const FftPlanKey& key);

    /// Takes over `plan`.
    explicit FftPlan(fftw_plan plan) noexcept : plan_(plan) {}
    ~FftPlan();
    FftPlan(const FftPlan&) = delete;
    FftPlan& operator=(const FftPlan&) = delete;

    /// Transforms `in` to `out`, each of 2 * length * count doubles, real and imaginary parts in turn. Takes no lock.
    void execute(const double* in, double* out) const noexcept;

private:
    fftw_plan plan_;
};

}  // namespace fftbridge

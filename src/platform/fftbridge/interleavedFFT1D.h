#pragma once

#include <cstddef>

#include "FftPlanCache.h"
#include "FftbridgeExport.h"

namespace fftbridge {

/// Discrete Fourier transforms of `howMany` signals that follow one another in memory:
///   out[c][k] = sum over n of in[c][n] * exp(sign * 2j * pi * k * n / length), not scaled.
/// `Reals` is the number of values of type `Real` that a sample consists of; double with 2, complex samples with their
/// real and imaginary parts in turn, is the one form there is.
/// context       how many plans `planCache` holds on to
/// planCache     the caller's plans, filled as lengths turn up
/// in            [howMany * length] samples, kept as they are
/// out           [howMany * length] samples, not overlapping `in`
/// sign          -1 forward, +1 backward
/// measureFirst  measure a plan that is new before it is used, which takes up to seconds; else start on a quick plan,
///               at most 2.5 times slower, that `fftwApi::improvePlans` replaces in time
/// Buffers from `fftwApi::malloc` give the best speed; any alignment of a double is accepted. Nothing happens for a
/// length or a count of 0. Takes no lock and allocates nothing once the plan is in the cache.
/// Throws std::runtime_error if FFTW has no plan, std::bad_alloc.
template <typename Real, int Reals>
void interleavedFFT1D(const FftContext& context, FftPlanCache& planCache, const Real* in, Real* out, std::size_t length,
                      std::size_t howMany, int sign, bool measureFirst);

template <>
FFTBRIDGE_EXPORT void interleavedFFT1D<double, 2>(const FftContext& context, FftPlanCache& planCache, const double* in,
                                                  double* out, std::size_t length, std::size_t howMany, int sign,
                                                  bool measureFirst);

}  // namespace fftbridge

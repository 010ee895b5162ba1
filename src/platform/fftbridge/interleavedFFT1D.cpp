#include "interleavedFFT1D.h"

#include <cassert>

#include "FftPlan.h"

namespace fftbridge {

namespace {

bool isAligned(const double* buffer) {
    return fftw_alignment_of(const_cast<double*>(buffer)) == 0;
}

}  // namespace

template <>
void interleavedFFT1D<double, 2>(const FftContext& context, FftPlanCache& planCache, const double* in, double* out,
                                 std::size_t length, std::size_t howMany, int sign, bool measureFirst) {
    assert(in != out && (sign == -1 || sign == 1));
    if (length == 0 || howMany == 0) {
        return;
    }
    const FftPlanKey key{length, howMany, sign, isAligned(in) && isAligned(out)};
    planCache.find(context, key, measureFirst).execute(in, out);
}

}  // namespace fftbridge

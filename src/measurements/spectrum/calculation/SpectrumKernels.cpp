#include "SpectrumKernels.h"

#include <cstdint>
#include <limits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace dspwavedecks {

namespace {

#define VECTOR_KERNELS "SpectrumKernels.inl"
#include "VectorVariants.inl"

}  // namespace

const SpectrumKernels& spectrumKernels(InstructionSet set) {
    return set == InstructionSet::avx2 ? avx2::table : portable::table;
}

const SpectrumKernels& spectrumKernels() {
    static const SpectrumKernels& best = spectrumKernels(avx2OrPortable());
    return best;
}

}  // namespace dspwavedecks

#pragma once

namespace dspwavedecks {

/// Vector instructions that kernels are built for. The choice is made at run time: one build runs on any machine.
enum class InstructionSet {
    portable,  ///< what every machine of the architecture has: SSE2 on x86-64, Neon on 64-bit Arm
    avx2,      ///< AVX2 with fused multiply-add
    avx512,    ///< AVX-512
};

/// Whether the machine at hand can run kernels built for `set`.
inline bool isSupported(InstructionSet set) {
#if defined(__x86_64__)
    switch (set) {
        case InstructionSet::avx512:
            return __builtin_cpu_supports("avx512f");
        case InstructionSet::avx2:
            return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
        case InstructionSet::portable:
            break;
    }
    return true;
#else
    return set == InstructionSet::portable;
#endif
}

/// The better set of the two that VectorVariants.inl makes.
inline InstructionSet avx2OrPortable() {
    return isSupported(InstructionSet::avx2) ? InstructionSet::avx2 : InstructionSet::portable;
}

}  // namespace dspwavedecks

#pragma once

#include <cstddef>

#include "InstructionSet.h"

namespace dspwavedecks::vectormath {

/// The functions of `VectorMath.h` for one instruction set, with all arguments and in the same order.
struct VectorKernels {
    void (*toDecibels)(const double*, double*, std::size_t, double, double);
    void (*rootToDecibels)(const double*, double*, std::size_t, double, double, double, double);
    void (*fromDecibels)(const double*, double*, std::size_t, double);
    void (*squareFromDecibels)(const double*, double*, std::size_t, double, double);
    void (*squareRoots)(const double*, double*, std::size_t);
    void (*windowReal)(const double*, const double*, double*, std::size_t);
    void (*windowComplex)(const double*, const double*, double*, std::size_t);
    void (*scaledPower)(const double*, double, double*, std::size_t);
    bool (*averageExponentially)(double*, double*, std::size_t, double, bool);
    bool (*averagePower)(const double*, double, double*, std::size_t, double, bool);
    void (*holdMaximum)(const double*, double*, std::size_t);
    void (*holdMinimum)(const double*, double*, std::size_t);
};

/// The kernels for `set`, which the machine must support to run them.
const VectorKernels& kernelsFor(InstructionSet set);

extern const VectorKernels portableKernels;
#if defined(__x86_64__)
extern const VectorKernels avx2Kernels;
extern const VectorKernels avx512Kernels;
#endif

}  // namespace dspwavedecks::vectormath

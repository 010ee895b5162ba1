#include "VectorMath.h"

#include "InstructionSet.h"
#include "VectorKernels.h"

namespace dspwavedecks::vectormath {

namespace {

const VectorKernels& kernels() {
    static const VectorKernels& best = kernelsFor(isSupported(InstructionSet::avx512) ? InstructionSet::avx512
                                                  : isSupported(InstructionSet::avx2) ? InstructionSet::avx2
                                                                                      : InstructionSet::portable);
    return best;
}

}  // namespace

const VectorKernels& kernelsFor(InstructionSet set) {
#if defined(__x86_64__)
    if (set == InstructionSet::avx512) {
        return avx512Kernels;
    }
    if (set == InstructionSet::avx2) {
        return avx2Kernels;
    }
#endif
    static_cast<void>(set);
    return portableKernels;
}

void toDecibels(const double* power, double* decibels, std::size_t n, double offset, double bias) {
    kernels().toDecibels(power, decibels, n, offset, bias);
}

void rootToDecibels(const double* power, double* decibels, std::size_t n, double fullScale, double offset,
                    double ceiling, double bias) {
    kernels().rootToDecibels(power, decibels, n, fullScale, offset, ceiling, bias);
}

void fromDecibels(const double* decibels, double* power, std::size_t n, double offset) {
    kernels().fromDecibels(decibels, power, n, offset);
}

void squareFromDecibels(const double* decibels, double* power, std::size_t n, double offset, double resistance) {
    kernels().squareFromDecibels(decibels, power, n, offset, resistance);
}

void squareRoots(const double* power, double* roots, std::size_t n) {
    kernels().squareRoots(power, roots, n);
}

void windowReal(const double* samples, const double* window, double* spectrum, std::size_t n) {
    kernels().windowReal(samples, window, spectrum, n);
}

void windowComplex(const double* samples, const double* window, double* spectrum, std::size_t n) {
    kernels().windowComplex(samples, window, spectrum, n);
}

void scaledPower(const double* spectrum, double scale, double* power, std::size_t n) {
    kernels().scaledPower(spectrum, scale, power, n);
}

bool averageExponentially(double* row, double* average, std::size_t n, double weight, bool useNonFinite) {
    return kernels().averageExponentially(row, average, n, weight, useNonFinite);
}

bool averagePower(const double* spectrum, double scale, double* average, std::size_t n, double weight,
                  bool useNonFinite) {
    return kernels().averagePower(spectrum, scale, average, n, weight, useNonFinite);
}

void holdMaximum(const double* row, double* hold, std::size_t n) {
    kernels().holdMaximum(row, hold, n);
}

void holdMinimum(const double* row, double* hold, std::size_t n) {
    kernels().holdMinimum(row, hold, n);
}

}  // namespace dspwavedecks::vectormath

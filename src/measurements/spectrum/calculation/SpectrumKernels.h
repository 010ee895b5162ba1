#pragma once

#include <cstddef>

#include "InstructionSet.h"

namespace dspwavedecks {

/// Vectorised passes over the bins of a spectrum, for the instructions that the machine has. All comparisons are those
/// of the plain loops: one with a NaN is false.
struct SpectrumKernels {
    /// Whether any bins[k] > reference + line[k], k < n.
    bool (*anyAbove)(const double* bins, const double* line, double reference, std::size_t n);

    /// Whether any bins[k] < reference + line[k], k < n.
    bool (*anyBelow)(const double* bins, const double* line, double reference, std::size_t n);

    /// How many of x [n] are at most the bound.
    std::size_t (*countAtMost)(const double* x, std::size_t n, double bound);

    /// The largest of x [n] that exceeds the bound, the bound if none does.
    double (*largestAbove)(const double* x, std::size_t n, double bound);

    /// The smallest of x [n] that exceeds the bound, infinity if none does.
    double (*smallestAbove)(const double* x, std::size_t n, double bound);
};

/// The kernels for the machine at hand.
const SpectrumKernels& spectrumKernels();

/// The kernels for instructions that the machine must support.
const SpectrumKernels& spectrumKernels(InstructionSet set);

}  // namespace dspwavedecks

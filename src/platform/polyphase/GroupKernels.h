#pragma once

#include <cstddef>

#include "InstructionSet.h"
#include "PolyphaseBank.h"
#include "PolyphaseLayout.h"

namespace dspwavedecks::polyphase {

/// What becomes of the sums of a group of segments.
enum class Output {
    complexRows,  ///< written as complex samples, one segment late but for band 0
    realRow,      ///< written as real values, one segment late but for band 0
    none,         ///< added to what the next segment will get: a further turn of the commutator
};

/// One to `Layout::groupSize` segments to be filtered together.
struct Group {
    Layout layout;
    Output output;
    bool comesAlone;       ///< one segment, with the sums of later ones begun beside it
    std::size_t numBegun;  ///< which of the sums that are begun are its own, from 1; 0 if none are
    const double* tapStore;
    double* delayStore;
    std::size_t position;  ///< row of the first segment
    const double* samples;
    std::size_t segmentLength;  ///< at most the number of bands
    std::size_t numSegments;
    double* rows;
    std::size_t rowStride;
};

using GroupKernel = void (*)(const Group&);

/// The kernel for `set`, which the machine must support to run it.
GroupKernel groupKernelFor(InstructionSet set);

/// `analyze` and `analyzeToReal` with a kernel of choice.
void analyzeWith(GroupKernel kernel, const Bank& bank, SampleKind kind, double* delayStore, const double* samples,
                 std::size_t segmentLength, std::size_t numSegments, Output output, double* rows,
                 std::size_t rowStride);

void filterGroupPortable(const Group& group);
#if defined(__x86_64__)
void filterGroupAvx2(const Group& group);
void filterGroupAvx512(const Group& group);
#endif

}  // namespace dspwavedecks::polyphase

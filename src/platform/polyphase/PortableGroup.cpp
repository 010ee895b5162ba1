// The kernel for what every machine of the architecture has.

#include "GroupKernels.h"

#include <cstddef>
#include <cstdint>

#define VECTOR_TARGET
#define VECTOR_LANES 2

namespace dspwavedecks::polyphase {

namespace {

#include "VectorType.inl"

#include "GroupKernel.inl"

}  // namespace

void filterGroupPortable(const Group& group) {
    filterGroup(group);
}

}  // namespace dspwavedecks::polyphase

#pragma once

#include <new>
#include <utility>
#include <vector>

#include "AlignedVector.h"

namespace dspwavedecks {

/// Leaves elements that a resize adds uninitialised: a run of samples that grows is written right after, and zeroing it
/// first would touch the memory twice.
template <class T>
struct UninitializedAllocator : CacheLineAllocator<T> {
    UninitializedAllocator() = default;
    template <class Other>
    UninitializedAllocator(const UninitializedAllocator<Other>&) noexcept {}

    template <class Element>
    void construct(Element*) noexcept {}
    template <class Element, class... Arguments>
    void construct(Element* place, Arguments&&... arguments) {
        ::new (static_cast<void*>(place)) Element(std::forward<Arguments>(arguments)...);
    }
};

/// An aligned vector whose new elements hold anything until they are written.
template <class T>
using SampleVector = std::vector<T, UninitializedAllocator<T>>;

}  // namespace dspwavedecks

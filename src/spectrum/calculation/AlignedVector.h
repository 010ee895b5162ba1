#pragma once

#include <cstddef>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace dspwavedecks {

/// Allocator for samples that vectorised loops run over: memory at multiples of a cache line, and elements that a
/// resize adds stay uninitialised, since they are written next.
template <class T>
struct AlignedAllocator {
    using value_type = T;
    static constexpr std::align_val_t alignment{64};

    AlignedAllocator() = default;
    template <class U>
    explicit(false) AlignedAllocator(const AlignedAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(::operator new(count * sizeof(T), alignment));
    }
    void deallocate(T* pointer, std::size_t) noexcept { ::operator delete(pointer, alignment); }

    template <class U>
    void construct(U*) noexcept {}
    template <class U, class... Args>
    void construct(U* place, Args&&... args) {
        ::new (static_cast<void*>(place)) U(std::forward<Args>(args)...);
    }

    bool operator==(const AlignedAllocator&) const noexcept { return true; }
};

template <class T>
using AlignedVector = std::vector<T, AlignedAllocator<T>>;

}  // namespace dspwavedecks

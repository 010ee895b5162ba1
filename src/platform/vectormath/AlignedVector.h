#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace dspwavedecks {

/// Allocator of memory that begins on a cache line, which is also the width of the widest vector: the same kernel was
/// measured half again as slow on stores that straddle lines.
template <class T>
struct CacheLineAllocator {
    using value_type = T;
    static constexpr std::align_val_t alignment{64};

    CacheLineAllocator() = default;
    template <class Other>
    CacheLineAllocator(const CacheLineAllocator<Other>&) noexcept {}

    T* allocate(std::size_t n) { return static_cast<T*>(::operator new(n * sizeof(T), alignment)); }
    void deallocate(T* memory, std::size_t) noexcept { ::operator delete(memory, alignment); }
    friend bool operator==(const CacheLineAllocator&, const CacheLineAllocator&) noexcept { return true; }
};

/// A std::vector whose first element begins on a cache line.
template <class T>
using AlignedVector = std::vector<T, CacheLineAllocator<T>>;

}  // namespace dspwavedecks

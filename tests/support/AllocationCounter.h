#pragma once

// Counts every allocation of the program. Include it in one source of a test program of its own.

#include <atomic>
#include <cstdlib>
#include <new>

namespace testsupport {

inline std::atomic<long> allocations{0};

}  // namespace testsupport

// Not inlined: the compiler would see malloc and free where it looks for new and delete, and warn.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++testsupport::allocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
// Runs of samples, averages and the buffers of transforms are aligned.
[[gnu::noinline]] void* operator new(std::size_t size, std::align_val_t alignment) {
    ++testsupport::allocations;
    const auto step = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(step, (size + step - 1) / step * step)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

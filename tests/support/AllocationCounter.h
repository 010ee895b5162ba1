#pragma once

// Counts every allocation of the program. Include it in one source of a test program of its own.

#include <atomic>
#include <cstdlib>
#include <new>

namespace testsupport {

inline std::atomic<long> allocations{0};

}  // namespace testsupport

void* operator new(std::size_t size) {
    ++testsupport::allocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

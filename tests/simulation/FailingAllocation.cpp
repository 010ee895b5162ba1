#include "FailingAllocation.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {
constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
std::size_t largestAllocation = unlimited;
}  // namespace

namespace testsupport {

AllocationLimit::AllocationLimit(std::size_t bytes) {
    largestAllocation = bytes;
}

AllocationLimit::~AllocationLimit() {
    largestAllocation = unlimited;
}

}  // namespace testsupport

// The program's own, in a source of their own so that they are not inlined one without the other.
void* operator new(std::size_t size) {
    void* const memory = size <= largestAllocation ? std::malloc(size) : nullptr;
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

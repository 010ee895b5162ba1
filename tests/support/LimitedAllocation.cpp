// The program's own operators new: requests of memory above a limit fail as they do on a small machine, so that an
// option or a header that asks for more leads to an exception and not to a machine without memory. One chosen request
// may fail too. All are counted.

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

#include "LimitedAllocation.h"

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> largestAllocation{unlimited};
std::atomic<long> allocationsToFailure{0};
std::atomic<bool> failed{false};
std::atomic<long> count{0};

void* allocate(std::size_t size, std::size_t alignment) {
    ++count;
    const bool fails = allocationsToFailure > 0 && --allocationsToFailure == 0;
    void* memory = nullptr;
    if (fails || size > largestAllocation || posix_memalign(&memory, alignment, size) != 0) {
        failed = failed || fails;
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

namespace testsupport {

AllocationLimit::AllocationLimit(std::size_t most) {
    largestAllocation = most;
}

AllocationLimit::~AllocationLimit() {
    largestAllocation = unlimited;
}

long numAllocations() {
    return count;
}

void failAllocationAfter(long later) {
    failed = false;
    allocationsToFailure = later;
}

bool hasAllocationFailed() {
    return failed;
}

}  // namespace testsupport

void* operator new(std::size_t size) {
    return allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
    std::free(memory);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

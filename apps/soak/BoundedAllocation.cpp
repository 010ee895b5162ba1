// Lets no single allocation grow beyond a bound: options that ask for absurd resolutions then meet the exception that
// they would meet on a full machine, and the soak neither fills the machine nor computes for minutes.
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t largestAllocation = std::size_t{1} << 26U;

void* allocate(std::size_t size, std::size_t alignment) {
    if (size > largestAllocation) {
        throw std::bad_alloc();
    }
    const std::size_t padded = (size + alignment - 1) / alignment * alignment;
    void* const memory = std::aligned_alloc(alignment, padded > 0 ? padded : alignment);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return size <= largestAllocation ? std::malloc(size) : nullptr;
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

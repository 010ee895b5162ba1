#pragma once

#include <cstddef>

namespace testsupport {

/// While it lives, requests of memory fail that ask for more bytes than so many: by default more than an input of a
/// fuzzer has any reason to.
class AllocationLimit {
public:
    explicit AllocationLimit(std::size_t most = std::size_t{8} << 20U);
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
    ~AllocationLimit();
};

/// How many allocations the program has made.
long numAllocations();

/// Lets the allocation that comes `count` after this one fail, once; 0: none.
void failAllocationAfter(long count);

/// Whether that allocation was asked for.
bool hasAllocationFailed();

}  // namespace testsupport

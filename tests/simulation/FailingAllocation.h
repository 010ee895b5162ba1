#pragma once

#include <cstddef>

namespace testsupport {

/// While it lives, requests of memory of more bytes than the limit fail with std::bad_alloc.
class AllocationLimit {
public:
    explicit AllocationLimit(std::size_t bytes);
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
    ~AllocationLimit();
};

}  // namespace testsupport

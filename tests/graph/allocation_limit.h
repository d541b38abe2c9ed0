#pragma once

#include <cstddef>

namespace brindlecast::testing {

// While one lives, the program can't allocate a block of more bytes: new throws std::bad_alloc.
class AllocationLimit {
public:
    explicit AllocationLimit(std::size_t bytes);
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
    ~AllocationLimit();
};

} // namespace brindlecast::testing

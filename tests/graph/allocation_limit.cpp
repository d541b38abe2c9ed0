#include "tests/graph/allocation_limit.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace brindlecast::testing {

namespace {

std::atomic<std::size_t> mostBytes{std::numeric_limits<std::size_t>::max()};

} // namespace

AllocationLimit::AllocationLimit(std::size_t bytes) {
    mostBytes = bytes;
}

AllocationLimit::~AllocationLimit() {
    mostBytes = std::numeric_limits<std::size_t>::max();
}

} // namespace brindlecast::testing

// The program's own allocation; every other form of new and delete comes down to these two.
void* operator new(std::size_t bytes) {
    void* const block =
        bytes <= brindlecast::testing::mostBytes ? std::malloc(bytes != 0 ? bytes : 1) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

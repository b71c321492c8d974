#include "tests/support/AllocationCounter.h"

#include <cstdlib>

namespace {

AllocationCounts counted;

} // namespace

AllocationCounts AllocationCounter::total() { return counted; }

#if defined(__SANITIZE_ADDRESS__) || !defined(__GLIBC__)

const char* AllocationCounter::obstacle() { return "only glibc's own malloc is counted"; }

#else

const char* AllocationCounter::obstacle() { return nullptr; }

// The executable's definitions take precedence over glibc's in every library of
// the process; glibc's own stay reachable under these names. Aligned allocations
// are not counted: nobody here makes any.
extern "C" {

void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void __libc_free(void* block);

void* malloc(std::size_t bytes) noexcept {
    ++counted.allocations;
    return __libc_malloc(bytes);
}

void* calloc(std::size_t count, std::size_t bytes) noexcept {
    ++counted.allocations;
    return __libc_calloc(count, bytes);
}

void* realloc(void* block, std::size_t bytes) noexcept {
    ++(block ? counted.resizes : counted.allocations);
    return __libc_realloc(block, bytes);
}

void free(void* block) noexcept {
    if (block) ++counted.releases;
    __libc_free(block);
}
}

#endif

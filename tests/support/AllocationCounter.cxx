#include "tests/support/AllocationCounter.h"

#include <cstdlib>

static AllocationCounts counted;

AllocationCounts AllocationCounter::total() { return counted; }

AllocationCounts AllocationCounter::counts() const {
    return {counted.allocations - start.allocations, counted.resizes - start.resizes,
            counted.releases - start.releases};
}

#if defined(__SANITIZE_ADDRESS__) || !defined(__GLIBC__)
const char* AllocationCounter::obstacle() { return "only glibc's own malloc is counted"; }
#else
const char* AllocationCounter::obstacle() { return nullptr; }

// These take precedence over glibc's in every library of the process.
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
    counted.releases += block != nullptr;
    __libc_free(block);
}
}
#endif

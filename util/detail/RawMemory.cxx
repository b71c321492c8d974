#include "util/detail/RawMemory.h"

#include "util/Fatal.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

// Asking the allocator what a block really holds costs a tenth of realloc(), and
// strings and arrays that grow a little at a time ask very often. Under the
// address sanitizer every block is exact, so that it sees each byte too many.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
std::size_t usableSize(void* block) { return block ? malloc_usable_size(block) : 0; }
std::size_t growthSlack(std::size_t bytes) { return bytes / 8 + 16; }
// Well above what growth leaves, rounded up to pages as it may be: a block must
// not shrink right after it has grown.
std::size_t shrinkSlack(std::size_t bytes) { return bytes / 4 + (bytes < 65536 ? 64 : 4096); }
#else
std::size_t usableSize(void*) { return 0; }
std::size_t growthSlack(std::size_t) { return 0; }
std::size_t shrinkSlack(std::size_t) { return 0; }
#endif

void* reallocate(void* block, std::size_t bytes) {
    void* moved = std::realloc(block, bytes);
    if (!moved) qzRawExhausted();
    return moved;
}

} // namespace

void qzRawExhausted() { qzFatal("out of memory"); }

void* qzRawResize(void* block, std::size_t bytes) {
    if (bytes == 0) {
        std::free(block);
        return nullptr;
    }
    const std::size_t usable = usableSize(block);
    if (bytes <= usable) {
        const bool fits = usable - bytes <= shrinkSlack(bytes);
        return fits ? block : reallocate(block, bytes);
    }
    return qzRawGrow(block, bytes);
}

void* qzRawGrow(void* block, std::size_t bytes) {
    if (!block) return qzRawAlloc(bytes);
    if (bytes <= usableSize(block)) return block;
    const std::size_t roomy = bytes + growthSlack(bytes);
    void* grown = roomy > bytes ? std::realloc(block, roomy) : nullptr;
    return grown ? grown : reallocate(block, bytes);
}

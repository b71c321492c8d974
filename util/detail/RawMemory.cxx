#include "util/detail/RawMemory.h"

#include "util/Fatal.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

#if defined(__GLIBC__)
std::size_t usableSize(void* block) { return malloc_usable_size(block); }
#else
std::size_t usableSize(void*) { return 0; }
#endif

// realloc hands the same block back when the new size falls into the room that
// the allocator rounds every block up to: 16 bytes, or a page for blocks that
// it maps one by one. Seeing that here costs a tenth of the call, and arrays
// that grow by four elements at a time ask very often.
bool fitsInPlace(std::size_t usable, std::size_t bytes) {
    const std::size_t mappedSize = 128 * 1024;
    const std::size_t slack = usable >= mappedSize ? 4096 : 16;
    return bytes <= usable && usable - bytes < slack;
}

} // namespace

void qzRawExhausted() { qzFatal("out of memory"); }

void* qzRawResize(void* block, std::size_t bytes) {
    if (bytes == 0) {
        std::free(block);
        return nullptr;
    }
    if (block && fitsInPlace(usableSize(block), bytes)) return block;
    void* resized = std::realloc(block, bytes);
    if (!resized) qzRawExhausted();
    return resized;
}

void* qzRawGrow(void* block, std::size_t bytes) {
    if (block && bytes <= usableSize(block)) return block;
    return qzRawResize(block, bytes);
}

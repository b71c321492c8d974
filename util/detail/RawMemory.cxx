#include "util/detail/RawMemory.h"

#include <cstdint>
#include <malloc.h>

#include "util/Fatal.h"

namespace {

// Where blocks tell their size, one that grows takes more than it needs now.
std::size_t growthSlack(std::size_t bytes) {
    return QZ_BLOCKS_TELL_THEIR_SIZE ? bytes / 8 + 16 : 0;
}

// Well above what growth leaves, rounded up to pages as it may be: a block must
// not shrink right after it has grown.
std::size_t shrinkSlack(std::size_t bytes) { return bytes / 4 + (bytes < 65536 ? 64 : 4096); }

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
    const std::size_t usable = qzRawUsable(block);
    if (bytes <= usable) {
        const bool fits = usable - bytes <= shrinkSlack(bytes);
        return fits ? block : reallocate(block, bytes);
    }
    return qzRawGrowBlock(block, bytes);
}

bool qzRawReaches(void* block, const void* byte) {
    const auto distance =
        reinterpret_cast<std::uintptr_t>(byte) - reinterpret_cast<std::uintptr_t>(block);
    return distance < malloc_usable_size(block);
}

void* qzRawGrowBlock(void* block, std::size_t bytes) {
    if (!block) return qzRawAlloc(bytes);
    const std::size_t roomy = bytes + growthSlack(bytes);
    void* grown = roomy > bytes ? std::realloc(block, roomy) : nullptr;
    return grown ? grown : reallocate(block, bytes);
}

#include "regex/detail/BacktrackStack.h"

#include <new>

namespace qzReg {

bool BacktrackStack::enterNext() {
    if (!chunk->above) {
        const auto size = static_cast<std::size_t>(limit - base);
        const std::size_t words = size * 8 < largestSize ? size * 8 : largestSize;
        void* const block = qzRawTryAlloc(sizeof(Chunk) + words * sizeof *base);
        if (!block) return false;
        auto* const next = new (block) Chunk;
        next->below = chunk;
        next->base = reinterpret_cast<const char**>(next + 1);
        next->top = next->base;
        next->limit = next->base + words;
        chunk->above = next;
    }
    chunk->base = base;
    chunk->top = top;
    chunk->limit = limit;
    use(chunk->above);
    return true;
}

void BacktrackStack::leave() {
    chunk->top = base;
    use(chunk->below);
}

} // namespace qzReg

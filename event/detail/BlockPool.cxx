#include "event/detail/BlockPool.h"

void qzBlocks::nextChunk(std::size_t bytes) {
    Chunk*& next = current ? current->next : first;
    if (!next) next = new (qzRawAlloc(sizeof(Chunk) + chunkBytes)) Chunk{nullptr};
    current = next;
    fresh = blocksOf(current);
    end = fresh + chunkBytes / bytes * bytes;
}

void qzBlocks::restart() {
    if (Chunk* const idle = current->next) {
        current->next = idle->next;
        qzRawFree(idle);
    }
    end = blocksOf(first) + (end - blocksOf(current));
    current = first;
    fresh = blocksOf(first);
    unused = nullptr;
}

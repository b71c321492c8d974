// qzBlockPool: the blocks of small objects that come and go in numbers, as those
// that are made for one send and destroyed after it.
//
// Blocks of one size are carved from chunks and recycled last in, first out; they
// lie side by side, without the allocator's headers, and taking and giving back
// cost two loads and two stores. Whenever all are back, the next ones are carved
// from the start again, in the order of their addresses.
//
// Owner is the root of the classes whose objects these are; each has a pool of its
// own, so that one that lives long does not hold up another's.
//
// Memory: chunks stay for the next burst. Whenever all blocks are back, one chunk
//     goes that has not been needed since the last time. Larger blocks come and go
//     directly, and so does every block under the address sanitizer, which otherwise
//     would not see a use after the end.
#ifndef QZ_EVENT_DETAIL_BLOCKPOOL_H
#define QZ_EVENT_DETAIL_BLOCKPOOL_H

#include <cassert>
#include <cstddef>
#include <new>

#include "util/detail/RawMemory.h"

// The pool of one size.
class qzBlocks {
  public:
    // bytes is the same in every call, a multiple of the size of a pointer.
    void* take(std::size_t bytes) {
        ++used;
        if (Unused* const block = unused) {
            unused = block->next;
            return block;
        }
        if (fresh == end) nextChunk(bytes);
        char* const block = fresh;
        fresh += bytes;
        return block;
    }

    void giveBack(void* block) {
        unused = new (block) Unused{unused};
        assert(used > 0);
        if (--used == 0) restart();
    }

  private:
    struct Unused {
        Unused* next;
    };
    struct alignas(16) Chunk { // blocks whose size is a multiple of 16 are aligned to it
        Chunk* next;
    };
    static constexpr std::size_t chunkBytes = 16384 - 32; // of blocks

    void nextChunk(std::size_t bytes);
    void restart();
    static char* blocksOf(Chunk* chunk) { return reinterpret_cast<char*>(chunk + 1); }

    Unused* unused;
    char* fresh; // where the next block is carved
    char* end;   // of what can be carved of the current chunk
    unsigned used;
    Chunk* first;
    Chunk* current; // those behind it are not needed yet; null before the first
};

template <class Owner> class qzBlockPool {
  public:
    static void* take(std::size_t bytes) {
        return recycles(bytes) ? blocks(bytes).take(roundedUp(bytes)) : qzRawAlloc(bytes);
    }

    // bytes as in the call that took it.
    static void giveBack(void* block, std::size_t bytes) {
        if (!recycles(bytes)) return qzRawFree(block);
        blocks(bytes).giveBack(block);
    }

  private:
    static constexpr std::size_t grain = sizeof(void*);
    static constexpr std::size_t largest = 96;
#if defined(__SANITIZE_ADDRESS__) || QZ_CLANG_ADDRESS_SANITIZER
    static constexpr bool enabled = false;
#else
    static constexpr bool enabled = true;
#endif

    static bool recycles(std::size_t bytes) { return enabled && bytes <= largest; }
    static std::size_t roundedUp(std::size_t bytes) { return (bytes + grain - 1) / grain * grain; }
    static qzBlocks& blocks(std::size_t bytes) { return bySize[(bytes - 1) / grain]; }

    static inline qzBlocks bySize[largest / grain];
};

#endif

// Raw memory: the one place that calls malloc, realloc, free and untyped copies
// but for what util/Str.h and util/TempStr.h do inline.
//
// Units: bytes throughout. Every function is happy with zero bytes and null.
// Errors: a block that cannot be had ends the process through qzFatal, except
// where the name says Try: these serve sizes that come from outside the process.
#ifndef QZ_UTIL_DETAIL_RAWMEMORY_H
#define QZ_UTIL_DETAIL_RAWMEMORY_H

#include <cstdlib>
#include <cstring>
#include <functional>

#if defined(__has_feature)
#define QZ_CLANG_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#else
#define QZ_CLANG_ADDRESS_SANITIZER 0
#endif

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !QZ_CLANG_ADDRESS_SANITIZER
#define QZ_BLOCKS_TELL_THEIR_SIZE 1
#include <malloc.h>
#else
#define QZ_BLOCKS_TELL_THEIR_SIZE 0
#endif

// Writes "out of memory" and aborts.
[[noreturn]] void qzRawExhausted();

// A new block; null for zero bytes.
inline void* qzRawAlloc(std::size_t bytes) {
    if (bytes == 0) return nullptr;
    void* block = std::malloc(bytes);
    if (!block) qzRawExhausted();
    return block;
}

// A new block, or null when there is none (and for zero bytes).
inline void* qzRawTryAlloc(std::size_t bytes) { return bytes ? std::malloc(bytes) : nullptr; }

// A new block of zeroes, or null when there is none (and for zero bytes). A
// large one costs no memory until it is written to.
inline void* qzRawTryZeroed(std::size_t bytes) { return bytes ? std::calloc(bytes, 1) : nullptr; }

// The block resized to `bytes`, which may move it; null for zero bytes. As in
// any allocator with size classes, a block that grows gets an eighth and 16 bytes
// more than it asks for, and one stays as it is that shrinks by less than a
// quarter of its new size and 64 bytes (4 kB for large ones).
void* qzRawResize(void* block, std::size_t bytes);

// The same, or null with the block unchanged when there is no memory.
inline void* qzRawTryResize(void* block, std::size_t bytes) {
    return bytes ? std::realloc(block, bytes) : nullptr;
}

// What the block can hold, 0 where that is not known. Asking costs a tenth of
// realloc(), and strings and arrays that grow a little at a time ask very often.
// Under the address sanitizer nothing is known: every block is exact there, so
// that it sees each byte too many.
inline std::size_t qzRawUsable(void* block) {
#if QZ_BLOCKS_TELL_THEIR_SIZE
    return malloc_usable_size(block);
#else
    (void)block;
    return 0;
#endif
}

// The block, or a new one for null, made to hold at least `bytes`.
void* qzRawGrowBlock(void* block, std::size_t bytes);
inline void* qzRawGrow(void* block, std::size_t bytes) {
    return bytes <= qzRawUsable(block) ? block : qzRawGrowBlock(block, bytes);
}

// Whether the block, from malloc, has this byte.
bool qzRawReaches(void* block, const void* byte);

inline void qzRawFree(void* block) { std::free(block); }

// Sizes are kept in 32 bits: what does not fit them cannot be held.
inline unsigned qzRawLength(std::size_t bytes) {
    if (bytes > 0xfffffffeu) qzRawExhausted();
    return static_cast<unsigned>(bytes);
}
inline unsigned qzRawSum(unsigned a, unsigned b) {
    if (a > 0xffffffffu - b) qzRawExhausted();
    return a + b;
}

// Overlap-safe copy.
inline void qzRawMove(void* to, const void* from, std::size_t bytes) {
    if (bytes) std::memmove(to, from, bytes);
}

inline void qzRawZero(void* to, std::size_t bytes) {
    if (bytes) std::memset(to, 0, bytes);
}

// The position just after the last byte c of these, 0 when there is none.
inline unsigned qzRawFindLast(const char* bytes, char c, unsigned n) {
#if defined(__GLIBC__)
    const void* hit = memrchr(bytes, static_cast<unsigned char>(c), n);
    return hit ? static_cast<unsigned>(static_cast<const char*>(hit) - bytes) + 1 : 0;
#else
    while (n && bytes[n - 1] != c)
        --n;
    return n;
#endif
}

// The 32-bit word at any address, in the machine's byte order.
inline unsigned qzLoadWord(const void* at) {
    unsigned word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

// Whether p points into the block [begin, begin + bytes). An operation that may
// move its block asks this about an argument that may lie inside it.
inline bool qzRawInside(const void* p, const void* begin, std::size_t bytes) {
    const char* first = static_cast<const char*>(begin);
    std::less<const char*> before;
    return first && !before(static_cast<const char*>(p), first) &&
           before(static_cast<const char*>(p), first + bytes);
}

#endif

// The "generic SIMD" search of W. Mula, "SIMD-friendly algorithms for substring
// searching" (2016): sixteen places are compared at once with one character of
// the literal and, further on, with another; only a place where both are right is
// compared with the whole literal. There, text and literal may agree for long and
// differ in the end, time and again: once that has cost a comparison for each
// byte passed, the C library's search, which is linear, goes on.
#include "regex/detail/LiteralSearch.h"

#include <cstring>
#include <emmintrin.h>

namespace qzReg {

namespace {

const std::ptrdiff_t blockSize = 16;

// The two characters, each in all of a block, and where they are.
struct Pair {
    explicit Pair(const Literal& literal)
        : rarest(_mm_set1_epi8(literal.text[literal.rarest])),
          companion(_mm_set1_epi8(literal.text[literal.companion])), rarestIndex(literal.rarest),
          companionIndex(literal.companion) {}
    __m128i rarest, companion;
    unsigned rarestIndex, companionIndex;
};

// A zero byte for each place of the block that begins here which has both.
inline __m128i differences(const Pair& pair, const char* block) {
    const auto* const at = reinterpret_cast<const __m128i*>(block + pair.rarestIndex);
    const auto* const other = reinterpret_cast<const __m128i*>(block + pair.companionIndex);
    return _mm_or_si128(_mm_xor_si128(_mm_loadu_si128(at), pair.rarest),
                        _mm_xor_si128(_mm_loadu_si128(other), pair.companion));
}

// A bit for each zero byte.
inline unsigned zeroes(__m128i bytes) {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
}

unsigned agreement(const char* bytes, const Literal& literal) {
    unsigned length = 0;
    while (length < literal.length && bytes[length] == literal.text[length])
        ++length;
    return length;
}

const char* findAtFewPlaces(const char* bytes, std::size_t places, const Literal& literal) {
    for (const char* const end = bytes + places; bytes != end; ++bytes) {
        if (agreement(bytes, literal) == literal.length) return bytes;
    }
    return nullptr;
}

} // namespace

const char* findInBytes(const char* bytes, std::size_t size, const Literal& literal) {
    if (size < literal.length) return nullptr;
    const std::size_t places = size - literal.length + 1;
    if (places < static_cast<std::size_t>(blockSize))
        return findAtFewPlaces(bytes, places, literal);
    const Pair pair(literal);
    const char* const lastBlock = bytes + (places - blockSize);
    std::size_t compared = 0;
    for (const char* block = bytes;; block += blockSize) {
        while (lastBlock - block > 2 * blockSize &&
               zeroes(_mm_min_epu8(differences(pair, block),
                                   differences(pair, block + blockSize))) == 0)
            block += 2 * blockSize;
        if (block > lastBlock) block = lastBlock; // some of its places for the second time
        for (unsigned found = zeroes(differences(pair, block)); found != 0; found &= found - 1) {
            const char* const place = block + __builtin_ctz(found);
            const unsigned length = agreement(place, literal);
            if (length == literal.length) return place;
            compared += length;
        }
        if (block == lastBlock) return nullptr;
        if (compared > 256 + static_cast<std::size_t>(block - bytes)) {
            const auto rest = static_cast<std::size_t>(bytes + size - block);
            return static_cast<const char*>(memmem(block, rest, literal.text, literal.length));
        }
    }
}

const char* findInString(const char* string, const Literal& literal) {
    // Pieces that stay in the nearest cache for the search, the first of them
    // small, as a match near by must not cost a look at much more.
    const std::size_t largest = 8192;
    for (std::size_t piece = 128;; piece = piece < largest ? 2 * piece : largest) {
        const std::size_t window = piece + 2 * literal.length;
        const void* const nul = std::memchr(string, '\0', window);
        const std::size_t size =
            nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - string) : window;
        if (const char* found = findInBytes(string, size, literal)) return found;
        if (nul) return nullptr;
        string += size - (literal.length - 1); // an occurrence may span two pieces
    }
}

} // namespace qzReg

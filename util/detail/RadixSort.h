// Sorting of elements that compare as plain bytes. Such elements are identical
// when they compare equal, so that every sort gives the same result and the
// fastest can be taken:
//
//   1, 2, 4 and 8 bytes   radix sort from the last byte to the first (LSD, as in
//                         Knuth, The Art of Computer Programming 3, 5.2.5). It
//                         takes a block of the size of the elements; without
//                         one these are sorted by comparison.
//   up to 16 bytes        radix sort from the first byte on, in place: American
//                         flag sort (McIlroy, Bostic and McIlroy, Engineering
//                         Radix Sort, Computing Systems 6 (1993)). One level of
//                         recursion for a byte keeps the stack below 64 kB.
//   more, or few elements by comparison
//
// Elements that stand in order or the other way round already are found by one
// look at each; elements in no order have that look end at the first few.
//
// Tested by tests/util/ArrayTest.cxx, at every size.
#ifndef QZ_UTIL_DETAIL_RADIXSORT_H
#define QZ_UTIL_DETAIL_RADIXSORT_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "util/detail/ArraySort.h"
#include "util/detail/RawMemory.h"

template <class Word> Word qzLoad(const char* p) {
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// The order of memcmp on elements whose size is known when compiling.
template <class Word> struct qzWordOrder {
    int operator()(const char* a, const char* b) const {
        const Word first = bigEndian(qzLoad<Word>(a));
        const Word second = bigEndian(qzLoad<Word>(b));
        return (first > second) - (first < second);
    }
    static Word bigEndian(Word word) {
        switch (sizeof word) {
        case 1:
            return word;
        case 2:
            return static_cast<Word>(__builtin_bswap16(static_cast<unsigned short>(word)));
        case 4:
            return static_cast<Word>(__builtin_bswap32(static_cast<unsigned>(word)));
        default:
            return static_cast<Word>(__builtin_bswap64(word));
        }
    }
};

struct qzByteOrder {
    std::size_t size;
    int operator()(const char* a, const char* b) const { return std::memcmp(a, b, size); }
};

// The bytes of a word by their place in memory.
template <class Word> unsigned qzByteAt(Word word, unsigned place) {
    return static_cast<unsigned char>(word >> 8 * place);
}

// Sorts through a scratch block as large as the elements.
template <class Word> void qzRadixSortWords(char* base, std::size_t count, char* scratch) {
    unsigned counts[sizeof(Word)][256] = {};
    for (std::size_t i = 0; i < count; ++i) {
        const Word word = qzLoad<Word>(base + i * sizeof(Word));
        for (unsigned place = 0; place < sizeof(Word); ++place)
            ++counts[place][qzByteAt(word, place)];
    }
    char* from = base;
    char* to = scratch;
    for (unsigned place = sizeof(Word); place-- > 0;) {
        const unsigned* const countOf = counts[place];
        if (countOf[qzByteAt(qzLoad<Word>(from), place)] == count) continue; // all have this one
        char* next[256];
        char* start = to;
        for (unsigned byte = 0; byte < 256; start += countOf[byte++] * sizeof(Word))
            next[byte] = start;
        for (std::size_t i = 0; i < count; ++i) {
            const Word word = qzLoad<Word>(from + i * sizeof(Word));
            char*& slot = next[qzByteAt(word, place)];
            std::memcpy(slot, &word, sizeof word);
            slot += sizeof word;
        }
        std::swap(from, to);
    }
    if (from != base) std::memcpy(base, from, count * sizeof(Word));
}

template <class Word> void qzSortPlainWords(char* base, std::size_t count) {
    const qzWordMover<Word> exchange;
    const qzWordOrder<Word> order;
    if (qzPutInOrderByTurning(base, count, exchange, order, qzEqualAreIdentical)) return;
    // Below, clearing the counters costs more than the comparisons do.
    void* const scratch = count < 32 * sizeof(Word) ? nullptr : qzRawTryAlloc(count * sizeof(Word));
    if (scratch) {
        qzRadixSortWords<Word>(base, count, static_cast<char*>(scratch));
        qzRawFree(scratch);
    } else {
        qzSortWith(base, count, exchange, order);
    }
}

class qzAmericanFlagSort {
  public:
    static const std::size_t maxSize = 16;

    explicit qzAmericanFlagSort(std::size_t size) : size(size) {}

    // Sorts elements that are alike in their first `place` bytes.
    void sort(char* base, std::size_t count, std::size_t place = 0) {
        if (place == size) return;
        if (count < 64) {
            insertionSort(base, count);
            return;
        }
        std::size_t counts[256] = {};
        for (std::size_t i = 0; i < count; ++i)
            ++counts[byteOf(base + i * size + place)];
        deal(base, counts, place);
        for (std::size_t n : counts) {
            if (n > 1) sort(base, n, place + 1);
            base += n * size;
        }
    }

  private:
    static unsigned char byteOf(const char* p) { return static_cast<unsigned char>(*p); }

    // Each element goes to the pile of its byte, where the one that it finds
    // there is the next to go.
    void deal(char* base, const std::size_t (&counts)[256], std::size_t place) {
        char* next[256];
        for (unsigned byte = 0; byte < 256; ++byte) {
            next[byte] = base;
            base += counts[byte] * size;
        }
        const qzByteMover exchange{size};
        char* end = next[0];
        for (unsigned byte = 0; byte < 256; ++byte) {
            end += counts[byte] * size;
            while (next[byte] != end) {
                char*& target = next[byteOf(next[byte] + place)];
                if (&target != &next[byte]) exchange(next[byte], target);
                target += size;
            }
        }
    }

    void insertionSort(char* base, std::size_t count) {
        char taken[maxSize];
        for (char* p = base + size; p < base + count * size; p += size) {
            if (std::memcmp(p - size, p, size) <= 0) continue;
            std::memcpy(taken, p, size);
            char* gap = p;
            do {
                std::memcpy(gap, gap - size, size);
                gap -= size;
            } while (gap != base && std::memcmp(gap - size, taken, size) > 0);
            std::memcpy(gap, taken, size);
        }
    }

    const std::size_t size;
};

// Sorts count elements of the given size, at least one.
inline void qzSortPlainElements(char* base, std::size_t count, std::size_t size) {
    const qzByteMover exchange{size};
    const qzByteOrder order{size};
    switch (size) {
    case 1:
        return qzSortPlainWords<unsigned char>(base, count);
    case 2:
        return qzSortPlainWords<unsigned short>(base, count);
    case 4:
        return qzSortPlainWords<unsigned>(base, count);
    case 8:
        return qzSortPlainWords<unsigned long long>(base, count);
    }
    if (qzPutInOrderByTurning(base, count, exchange, order, qzEqualAreIdentical)) return;
    if (size <= qzAmericanFlagSort::maxSize) {
        qzAmericanFlagSort(size).sort(base, count);
    } else {
        qzSortWith(base, count, exchange, order);
    }
}

#endif

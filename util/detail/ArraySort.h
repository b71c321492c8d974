// Sorting of raw elements: Hoare's quicksort with the first element as pivot,
// finished by heapsort where the partitions go wrong (introsort).
//
// The partition is fixed in every comparison and exchange, so the order in
// which equal elements come out never changes between releases. The smaller
// side of a partition is recursed into and the larger looped over, which bounds
// the stack at log2(n) frames; a range that is still being split after
// 2 * log2(n) + 64 steps is finished by heapsort, which bounds the time at
// O(n log n). Elements move as raw bytes.
//
// Tested by tests/util/ArrayTest.cxx, against the plain recursive form.
#ifndef QZ_UTIL_DETAIL_ARRAYSORT_H
#define QZ_UTIL_DETAIL_ARRAYSORT_H

#include <cstddef>
#include <cstring>

// Exchanges elements whose size is known when compiling.
template <class Word> struct qzWordMover {
    static const std::size_t size = sizeof(Word);
    void operator()(char* a, char* b) const {
        Word first, second;
        std::memcpy(&first, a, sizeof first);
        std::memcpy(&second, b, sizeof second);
        std::memcpy(a, &second, sizeof second);
        std::memcpy(b, &first, sizeof first);
    }
};

// Exchanges elements of any size, a piece at a time.
struct qzByteMover {
    std::size_t size;
    void operator()(char* a, char* b) const {
        char scratch[32];
        for (std::size_t left = size; left;) {
            const std::size_t piece = left < sizeof scratch ? left : sizeof scratch;
            std::memcpy(scratch, a, piece);
            std::memmove(a, b, piece); // a and b may be one element
            std::memcpy(b, scratch, piece);
            a += piece;
            b += piece;
            left -= piece;
        }
    }
};

// Compare(a, b) on the addresses of two elements: negative, 0 or positive.
template <class Mover, class Compare> class qzArraySorter {
  public:
    qzArraySorter(Mover exchange, Compare compare) : exchange(exchange), compare(compare) {}

    void sort(char* lo, std::size_t count) {
        unsigned budget = 64;
        for (std::size_t n = count; n > 1; n >>= 1)
            budget += 2;
        quickSort(lo, lo + (count - 1) * exchange.size, budget);
    }

  private:
    // Sorts the elements from lo to hi, both included.
    void quickSort(char* lo, char* hi, unsigned budget) {
        while (lo < hi) {
            if (budget-- == 0) {
                heapSort(lo, hi);
                return;
            }
            char* const middle = partition(lo, hi);
            char* const below = middle == lo ? lo : middle - exchange.size; // last of the left side
            char* const above =
                middle == hi ? hi : middle + exchange.size; // first of the right side
            if (below - lo < hi - above) {
                quickSort(lo, below, budget);
                lo = above;
            } else {
                quickSort(above, hi, budget);
                hi = below;
            }
        }
    }

    // Puts the pivot, the element at lo, into its place; returns that place.
    char* partition(char* lo, char* hi) {
        char* i = lo;
        char* j = hi + exchange.size;
        for (;;) {
            while (i < hi) {
                i += exchange.size;
                if (compare(i, lo) >= 0) break;
            }
            while (j > lo) {
                j -= exchange.size;
                if (compare(j, lo) <= 0) break;
            }
            if (i >= j) break;
            exchange(i, j);
        }
        exchange(lo, j);
        return j;
    }

    void heapSort(char* lo, char* hi) {
        const std::size_t n = (hi - lo) / exchange.size + 1;
        for (std::size_t root = n / 2; root-- > 0;)
            siftDown(lo, root, n);
        for (std::size_t last = n; last-- > 1;) {
            exchange(lo, lo + last * exchange.size);
            siftDown(lo, 0, last);
        }
    }

    void siftDown(char* base, std::size_t root, std::size_t n) {
        for (std::size_t child; (child = 2 * root + 1) < n; root = child) {
            char* largest = base + child * exchange.size;
            if (child + 1 < n && compare(largest, largest + exchange.size) < 0) {
                ++child;
                largest += exchange.size;
            }
            char* const parent = base + root * exchange.size;
            if (compare(parent, largest) >= 0) return;
            exchange(parent, largest);
        }
    }

    Mover exchange;
    Compare compare;
};

template <class Mover, class Compare>
void qzSortWith(void* base, std::size_t count, Mover exchange, Compare compare) {
    qzArraySorter<Mover, Compare>(exchange, compare).sort(static_cast<char*>(base), count);
}

// Sorts count elements of the given size.
template <class Compare>
void qzSortElements(void* base, std::size_t count, std::size_t size, Compare compare) {
    switch (size) {
    case 4:
        return qzSortWith(base, count, qzWordMover<unsigned>(), compare);
    case 8:
        return qzSortWith(base, count, qzWordMover<unsigned long long>(), compare);
    default:
        return qzSortWith(base, count, qzByteMover{size}, compare);
    }
}

enum qzEqualElements { qzEqualDiffer, qzEqualAreIdentical };

// Whether the count elements, at least one, are in order now: they were, or they
// were in the opposite order and have been turned round. Where equal elements
// differ there must not be any, so that no sort could do otherwise.
template <class Mover, class Compare>
bool qzPutInOrderByTurning(char* base, std::size_t count, Mover exchange, Compare compare,
                           qzEqualElements equal) {
    const int tie = equal == qzEqualAreIdentical; // what may go either way is below it
    char* const last = base + (count - 1) * exchange.size;
    char* p = base;
    while (p != last && compare(p, p + exchange.size) < tie)
        p += exchange.size;
    if (p == last) return true;
    for (p = base; p != last; p += exchange.size) {
        if (compare(p, p + exchange.size) <= -tie) return false;
    }
    for (char *low = base, *high = last; low < high; low += exchange.size, high -= exchange.size)
        exchange(low, high);
    return true;
}

#endif

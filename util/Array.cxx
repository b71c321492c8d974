#include "util/Array.h"

#include <algorithm>
#include <climits>
#include <type_traits>

#include "util/Fatal.h"
#include "util/detail/RadixSort.h"
#include "util/detail/RawMemory.h"
#include "xdr/Transcriber.h"

qzTypeObj qzArray_type("qzArray", 1, nullptr, nullptr, qzArray::xdr);

// Construction

qzArray::qzArray(unsigned short elemSize, unsigned n)
    : data(nullptr), allocated(n * elemSize), used(allocated), elemSize(elemSize) {
    assert(elemSize && n <= UINT_MAX / elemSize);
    qzArray::getmem();
}

qzArray::qzArray(const qzArray& other)
    : qzXDRObj(other), data(nullptr), allocated(other.used), used(other.used),
      elemSize(other.elemSize) {
    qzArray::getmem();
    qzArray::copyElements(other.data, data, used);
}

qzArray::qzArray(unsigned elemSize, unsigned nbytes, void* block)
    : data(block), allocated(nbytes), used(nbytes),
      elemSize(static_cast<unsigned short>(elemSize)) {}

qzArray::qzArray(qzTypeObj& type)
    : qzXDRObj(type), data(nullptr), allocated(0), used(0), elemSize(1) {}

qzArray::~qzArray() { qzRawFree(data); }

// Element operations

void qzArray::getmem() { data = qzRawResize(data, allocated); }

void qzArray::expand() {
    allocated = qzRawSum(allocated, 4u * elemSize);
    getmem();
}

void qzArray::createElements(void*, unsigned) {}

void qzArray::destroyElements(void*, unsigned) {}

void qzArray::copyElements(const void* src, void* dst, unsigned nbytes) const {
    qzRawMove(dst, src, nbytes);
}

int qzArray::compareElements(const void* a, const void* b) const {
    const int order = std::memcmp(a, b, elemSize);
    return (order > 0) - (order < 0);
}

// Elements

bool qzArray::inside(const void* p) const { return qzRawInside(p, data, used); }

void qzArray::wrongElementSize(unsigned size) const {
    qzFatal("qzArray: elements of %u bytes where %u are held", size, elemSize);
}

void qzArray::growTo(unsigned nbytes) {
    if (nbytes <= allocated) return;
    allocated = nbytes;
    getmem();
}

void qzArray::destroy() {
    if (used) destroyElements(data, used);
}

void qzArray::assign(const qzArray& other) {
    if (this == &other) return;
    void* copy = other.raw_copy();
    destroy();
    qzRawFree(data);
    data = copy;
    allocated = used = other.used;
    elemSize = other.elemSize;
}

void qzArray::append(const void* elem) {
    if (used == allocated) {
        const bool own = inside(elem);
        const auto offset = own ? static_cast<const char*>(elem) - static_cast<char*>(data) : 0;
        expand();
        if (own) elem = static_cast<char*>(data) + offset;
    }
    copyElements(elem, static_cast<char*>(data) + used, elemSize);
    used += elemSize;
}

void qzArray::append(const qzArray& other) {
    const unsigned added = other.used;
    if (added == 0) return;
    requireElementSize(other.elemSize);
    growTo(qzRawSum(used, added));
    copyElements(other.data, static_cast<char*>(data) + used, added);
    used += added;
}

void qzArray::insert(const void* elem, unsigned pos) {
    const unsigned gap = pos * elemSize;
    assert(gap <= used);
    const bool own = inside(elem);
    auto offset = own ? static_cast<const char*>(elem) - static_cast<char*>(data) : 0;
    growTo(qzRawSum(used, elemSize));
    char* begin = static_cast<char*>(data);
    if (gap < used) qzRawMove(begin + gap + elemSize, begin + gap, used - gap);
    if (own) {
        if (static_cast<unsigned>(offset) >= gap) offset += elemSize; // moved up with the tail
        elem = begin + offset;
    }
    copyElements(elem, begin + gap, elemSize);
    used += elemSize;
}

void qzArray::insert(const qzArray& other, unsigned pos) {
    const unsigned added = other.used;
    if (added == 0) return;
    requireElementSize(other.elemSize);
    const unsigned gap = pos * elemSize;
    assert(gap <= used);
    growTo(qzRawSum(used, added));
    char* begin = static_cast<char*>(data);
    if (gap < used) qzRawMove(begin + gap + added, begin + gap, used - gap);
    if (this == &other) { // the gap has split the source in two
        copyElements(begin, begin + gap, gap);
        copyElements(begin + gap + added, begin + gap + gap, added - gap);
    } else {
        copyElements(other.data, begin + gap, added);
    }
    used += added;
}

void qzArray::remove(unsigned pos, unsigned count) {
    if (count == 0) return;
    const unsigned start = pos * elemSize;
    const unsigned nbytes = count * elemSize;
    assert(start <= used && nbytes <= used - start);
    char* begin = static_cast<char*>(data);
    destroyElements(begin + start, nbytes);
    qzRawMove(begin + start, begin + start + nbytes, used - start - nbytes);
    used -= nbytes;
}

void qzArray::resize(unsigned n) {
    assert(n <= UINT_MAX / elemSize);
    const unsigned nbytes = n * elemSize;
    allocated = nbytes;
    if (nbytes > used) {
        getmem();
        createElements(static_cast<char*>(data) + used, nbytes - used);
    } else if (nbytes < used) {
        destroyElements(static_cast<char*>(data) + nbytes, used - nbytes);
        getmem();
    } else {
        getmem();
    }
    used = nbytes;
}

void qzArray::setMaxLength(unsigned n) {
    assert(n <= UINT_MAX / elemSize);
    const unsigned wanted = std::max(n * elemSize, used);
    if (wanted == allocated) return;
    allocated = wanted;
    getmem();
}

void qzArray::swap(unsigned i, unsigned j) {
    assert(i < length() && j < length());
    if (i != j) std::swap_ranges(at(i), at(i) + elemSize, at(j));
}

int qzArray::find(const void* elem, unsigned start) const {
    const unsigned n = length();
    for (unsigned i = start; i < n; ++i) {
        if (compareElements(elem, at(i)) == 0) return static_cast<int>(i);
    }
    return -1;
}

namespace {

template <class Word> bool holds(const char* p, Word wanted) { return qzLoad<Word>(p) == wanted; }

// Both halves, without a branch: SSE2 cannot compare 64 bits.
template <> bool holds(const char* p, unsigned long long wanted) {
    const unsigned low = qzLoadWord(p) ^ static_cast<unsigned>(wanted);
    const unsigned high = qzLoadWord(p + 4) ^ static_cast<unsigned>(wanted >> 32);
    return (low | high) == 0;
}

// The index of the first word at or after start that has the bytes of elem, or -1.
template <class Word>
int findWord(const char* words, unsigned n, unsigned start, const void* elem) {
    const Word wanted = qzLoad<Word>(static_cast<const char*>(elem));
    // A block at a time without a branch between its words, for which compilers
    // take vector instructions (where it is longer than what they unroll). With
    // registers of 64 bits words of that size are found faster one by one.
    const unsigned block = sizeof wanted < 8 || sizeof(void*) == 4 ? 32 : UINT_MAX;
    unsigned i = start;
    for (; i < n && n - i >= block; i += block) {
        std::conditional_t<sizeof wanted == 8, unsigned, Word> hit =
            0; // as wide as holds() compares
        for (unsigned k = 0; k < block; ++k)
            hit |= holds(words + (i + k) * sizeof wanted, wanted);
        if (hit) break;
    }
    for (; i < n; ++i) {
        if (qzLoad<Word>(words + i * sizeof wanted) == wanted) return static_cast<int>(i);
    }
    return -1;
}

} // namespace

int qzArray::findPlain(const void* elem, unsigned start) const {
    const char* const begin = static_cast<const char*>(data);
    const unsigned n = length();
    switch (elemSize) {
    case 1:
        return findWord<unsigned char>(begin, n, start, elem);
    case 2:
        return findWord<unsigned short>(begin, n, start, elem);
    case 4:
        return findWord<unsigned>(begin, n, start, elem);
    case 8:
        return findWord<unsigned long long>(begin, n, start, elem);
    }
    for (unsigned i = start; i < n; ++i) {
        if (std::memcmp(elem, at(i), elemSize) == 0) return static_cast<int>(i);
    }
    return -1;
}

// Sorting

namespace {

// The order of the array's own virtual comparison.
struct VirtualOrder {
    const qzArray& array;
    int operator()(const void* a, const void* b) const { return array.compareElements(a, b); }
};

} // namespace

void qzArray::qsort() { qsort(0, length()); }

void qzArray::qsort(unsigned start, unsigned count) {
    assert(start <= length() && count <= length() - start);
    if (count) qzSortElements(at(start), count, elemSize, VirtualOrder{*this});
}

void qzArray::qsortPlain(unsigned start, unsigned count) {
    assert(start <= length() && count <= length() - start);
    if (count) qzSortPlainElements(at(start), count, elemSize);
}

// Raw extraction

void* qzArray::copyOut(unsigned offset, unsigned nbytes) const {
    void* block = qzRawAlloc(nbytes);
    if (block) copyElements(static_cast<char*>(data) + offset, block, nbytes);
    return block;
}

void* qzArray::raw_extract(unsigned pos, unsigned count) const {
    assert(pos <= length() && count <= length() - pos);
    return copyOut(pos * elemSize, count * elemSize);
}

void* qzArray::raw_cut(unsigned pos, unsigned count) {
    if (count == 0) return nullptr;
    const unsigned start = pos * elemSize;
    const unsigned nbytes = count * elemSize;
    assert(start <= used && nbytes <= used - start);
    char* begin = static_cast<char*>(data);
    void* block = qzRawAlloc(nbytes);
    qzRawMove(block, begin + start, nbytes);
    qzRawMove(begin + start, begin + start + nbytes, used - start - nbytes);
    used -= nbytes;
    return block;
}

// Transcription

unsigned char qzArray::xdr(qzTranscriber& t) { return t.xdr(qzXDRObj_type, this, this); }

unsigned char qzArray::xdr(void* object, qzTranscriber& t) {
    return static_cast<qzArray*>(object)->xdr(t);
}

qzTypeObj& qzArray::getTypeObj() const { return qzArray_type; }

namespace {

// Values whose type is unknown, by their width alone.
unsigned char xdrByWidth(qzTranscriber& t, void* values, unsigned n, unsigned width) {
    switch (width) {
    case 1:
        return t.xdr(static_cast<unsigned char*>(values), n);
    case 2:
        return t.xdr(static_cast<unsigned short*>(values), n);
    case 4:
        return t.xdr(static_cast<unsigned*>(values), n);
    default:
        return t.xdr(static_cast<double*>(values), n);
    }
}

} // namespace

unsigned char qzArray::xdrSizes(qzTranscriber& t, unsigned& streamUsed,
                                unsigned short& streamElemSize) {
    if (!t.xdr(&streamUsed, 1)) return 0;
    if (!t.xdr(&streamElemSize, 1)) return 0;
    return streamElemSize != 0 && streamUsed % streamElemSize == 0;
}

unsigned char qzArray::xdrValues(qzTranscriber& t, unsigned short memorySize,
                                 unsigned short streamSize, ValuesFunction ownValues) {
    if (t.isReading()) return readValues(t, memorySize, streamSize, ownValues);
    const bool own = elemSize == memorySize;
    const unsigned n = length();
    unsigned short streamElemSize = own ? streamSize : elemSize;
    unsigned streamUsed = n * streamElemSize;
    if (!xdrSizes(t, streamUsed, streamElemSize)) return 0;
    return own ? ownValues(t, data, n) : xdrByWidth(t, data, n, elemSize);
}

unsigned char qzArray::readValues(qzTranscriber& t, unsigned short memorySize,
                                  unsigned short streamSize, ValuesFunction ownValues) {
    unsigned streamUsed = 0;
    unsigned short width = 0;
    clear(memorySize);
    if (!xdrSizes(t, streamUsed, width)) return 0;
    if (width != 1 && width != 2 && width != 4 && width != 8) return 0;
    const bool own = width == streamSize;
    // Nothing would tell such elements from the class's own afterwards.
    if (!own && width == memorySize) return 0;
    clear(own ? memorySize : width);

    // A count is only a claim until its elements have arrived: room is taken a
    // megabyte at first and then as much again as has been filled. Arrays up to
    // that size are one block and one call.
    const unsigned n = streamUsed / width;
    const unsigned first = (1u << 20) / elemSize;
    for (unsigned have = 0; have < n;) {
        const unsigned wanted = std::min(n - have, std::max(first, have)) + have;
        if (!takeRoom(wanted, memorySize)) return 0;
        unsigned char arrived;
        if (own) {
            arrived = ownValues(t, at(have), wanted - have);
        } else {
            arrived = xdrByWidth(t, at(have), wanted - have, width);
        }
        if (!arrived) return 0;
        have = wanted;
        used = have * elemSize;
    }
    return 1;
}

void qzArray::clear(unsigned short newElemSize) {
    destroy();
    qzRawFree(data);
    data = nullptr;
    allocated = used = 0;
    elemSize = newElemSize;
}

bool qzArray::takeRoom(unsigned n, unsigned short typedSize) {
    if (n > UINT_MAX / std::max(elemSize, typedSize)) return false;
    void* block = qzRawTryResize(data, n * std::max(elemSize, typedSize));
    if (!block && n) return false;
    data = block;
    allocated = n * elemSize;
    return true;
}

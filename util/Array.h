// qzArray: base of every array: a contiguous, growable block of elements whose
// size is chosen at run time.
//
// All element work goes through the six virtual operations in slots 7 to 12, so
// that a derived class decides whether its elements are plain bytes or objects
// to be constructed, destroyed, copied and compared one by one. The typed
// arrays (util/IntArray.h and its siblings) are thin classes over this one.
//
// Units: positions and counts are elements; `allocated`, `used` and every
//     range handed to an element operation are bytes.
// Ownership: `data` is the array's own, from malloc; null when it has none. The
//     base destructor frees the block and leaves the elements alone: a derived
//     destructor calls destroy() first.
// Trusted: positions and counts are not checked in release builds. An element
//     or array argument may lie inside (or be) the array that is changed.
// Errors: find() reports absence with -1; a block that cannot be had is fatal.
// Cost: a single append makes room for four elements at a time, every other
//     operation sizes the block exactly. Elements are moved as raw bytes by
//     insert, remove, swap, raw_cut and the sort: their type must allow it.
#ifndef QZ_UTIL_ARRAY_H
#define QZ_UTIL_ARRAY_H

#include <cassert>

#include "xdr/XDRObj.h"

class QZ_EXPORT qzArray : public qzXDRObj {
  public:
    // Has length n at once; constructing the elements is the derived class's.
    qzArray(unsigned short elemSize, unsigned n);
    qzArray(const qzArray& other);
    // Adopts a block of nbytes from malloc.
    qzArray(unsigned elemSize, unsigned nbytes, void* block);
    // Empty, for a reader to fill.
    explicit qzArray(qzTypeObj& type);
    qzArray& operator=(const qzArray&) = delete; // a derived class knows its elements

    // slots 1-6; the base transcribes only its own base part, which is nothing
    ~qzArray() override;
    const char* className() const override = 0;
    unsigned char xdr(qzTranscriber& t) override;
    qzTypeObj& getTypeObj() const override;

    // slots 7-12: element operations
    // Makes the block match `allocated`.
    virtual void getmem();
    // Makes room for four more elements.
    virtual void expand();
    // Constructs elements in raw storage; the base leaves it as it is.
    virtual void createElements(void* p, unsigned nbytes);
    virtual void destroyElements(void* p, unsigned nbytes);
    // Copy-constructs elements from src into raw storage at dst; may overlap.
    virtual void copyElements(const void* src, void* dst, unsigned nbytes) const;
    // Negative, 0 or positive. Deliberate: the base compares bytes as unsigned
    // values whatever the element type, so that sorting plain arrays gives one
    // order of bytes, not of numbers. Pinned by
    // qzArray.PlainElementsOrderByBytesNotByValue.
    virtual int compareElements(const void* a, const void* b) const;

    unsigned length() const { return used / elemSize; }
    unsigned short elementSize() const { return elemSize; }
    // Address of the element.
    void* operator[](unsigned i) const {
        assert(i < length());
        return at(i);
    }

    // destroyElements() for all elements, if there are any.
    void destroy();

    void append(const void* elem);
    void append(const qzArray& other);
    void insert(const void* elem, unsigned pos);
    void insert(const qzArray& other, unsigned pos);
    // Keeps the capacity.
    void remove(unsigned pos, unsigned count);
    // Creates or destroys elements at the end; trims the capacity to n.
    void resize(unsigned n);
    // Capacity for max(n, length()) elements, exactly.
    void setMaxLength(unsigned n);
    void swap(unsigned i, unsigned j);
    // Index of the first element at or after start that compares equal; -1.
    int find(const void* elem, unsigned start = 0) const;

    // Order by compareElements(), not stable; ties go either way. Cost:
    // O(n log n) comparisons for every input and O(log n) stack.
    void qsort();
    void qsort(unsigned start, unsigned count);

    // Each returns a new block from malloc that the caller owns (null for no
    // elements). The elements are copied, except by raw_cut, which moves them
    // out of the array.
    void* raw_extract(unsigned pos, unsigned count) const;
    void* raw_head(unsigned count) const { return raw_extract(0, count); }
    void* raw_tail(unsigned count) const { return raw_extract(length() - count, count); }
    void* raw_copy() const { return copyOut(0, used); }
    void* raw_cut(unsigned pos, unsigned count);

    static unsigned char xdr(void* object, qzTranscriber& t);

  protected:
    char* at(unsigned i) const { return static_cast<char*>(data) + i * elemSize; }

    // What a derived assignment does: replaces the elements by copies of
    // other's, destroying the old ones; the capacity is then other's used size.
    void assign(const qzArray& other);

    // Transcription of elements that are plain values: the used size in bytes,
    // the element size and the elements. `memorySize` is the class's own element
    // size, `streamSize` what an element takes in a stream (the two differ for
    // longs where these have 8 bytes), `ownValues` moves n elements of the
    // class's own type. An array of another element size (every typed array
    // answers to one name in a stream) moves them by their width.
    using ValuesFunction = unsigned char (*)(qzTranscriber& t, void* values, unsigned n);
    unsigned char xdrValues(qzTranscriber& t, unsigned short memorySize, unsigned short streamSize,
                            ValuesFunction ownValues);

    // The two sizes that open every array in a stream; false also when they
    // contradict each other.
    static unsigned char xdrSizes(qzTranscriber& t, unsigned& streamUsed,
                                  unsigned short& streamElemSize);
    // Destroys the elements and frees the block.
    void clear(unsigned short newElemSize);
    // Capacity for n elements; false, changing nothing, when memory cannot hold
    // them. For counts that come from a stream. The block holds n elements of
    // typedSize as well, so that a typed index stays inside it.
    bool takeRoom(unsigned n, unsigned short typedSize);
    // Ends the process for elements of another size than the array's.
    void requireElementSize(unsigned size) const {
        if (size != elemSize) wrongElementSize(size);
    }

    // qsort() and find() for a class known to compare plain bytes: the same
    // results in other ways. Cost of sorting: elements of 1, 2, 4 and 8 bytes
    // are looked at a few times each and moved through a block of their size.
    void qsortPlain(unsigned start, unsigned count);
    int findPlain(const void* elem, unsigned start) const;

    void* data;              // null when nothing is allocated
    unsigned allocated;      // bytes
    unsigned used;           // bytes, a multiple of elemSize
    unsigned short elemSize; // bytes, at least 1

  private:
    [[noreturn]] void wrongElementSize(unsigned size) const;
    void* copyOut(unsigned offset, unsigned nbytes) const;
    void growTo(unsigned nbytes);
    bool inside(const void* p) const;
    unsigned char readValues(qzTranscriber& t, unsigned short memorySize, unsigned short streamSize,
                             ValuesFunction ownValues);
};

static_assert(sizeof(void*) != 4 || sizeof(qzArray) == 24,
              "dictionaries, sets and data values embed arrays");

extern QZ_EXPORT qzTypeObj qzArray_type;

#endif

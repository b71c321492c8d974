// qzTypedArray: the pattern of the typed arrays.
//
// A member of the family is a thin class over qzArray that fixes the element
// type and gives typed forms of its operations:
//
//     class qzIntArray : public qzXDRArray<qzIntArray, int, qzIntArray_type>
//     class qzVoidPtrArray : public qzTypedArray<qzVoidPtrArray, void*, qzPointerElements>
//
// Derived is the member itself, T its element type. Elements is the class that
// overrides the element operations: qzArray for plain values, whose new slots
// hold whatever the fresh block held; qzPointerElements, whose new slots are
// null; qzObjectElements, whose slots are constructed and destroyed.
//
// Units: positions and counts are elements.
// Ownership, trust and cost are qzArray's. Plain values are appended inline
// where there is room, without a call: a class that needs its own
// copyElements() for plain values derives from qzArray.
#ifndef QZ_UTIL_TYPEDARRAY_H
#define QZ_UTIL_TYPEDARRAY_H

#include <cstring>
#include <new>
#include <type_traits>
#include <typeinfo>

#include "util/Array.h"

class QZ_EXPORT qzPointerElements : public qzArray {
  public:
    using qzArray::qzArray;
    ~qzPointerElements() override;
    void createElements(void* p, unsigned nbytes) override; // all null

    // Replaces the elements by n null ones; false, changing nothing, when memory
    // cannot hold them. For counts that come from a stream.
    bool tryReplace(unsigned n);
};

template <class T> class QZ_EXPORT qzObjectElements : public qzArray {
  public:
    using qzArray::qzArray;
    void createElements(void* p, unsigned nbytes) override;
    void destroyElements(void* p, unsigned nbytes) override;
    void copyElements(const void* src, void* dst, unsigned nbytes) const override;
    int compareElements(const void* a, const void* b) const override; // compare(a, b)
};

template <class Derived, class T, class Elements = qzArray>
class QZ_EXPORT qzTypedArray : public Elements {
  public:
    using Element = T;

    qzTypedArray() : Elements(sizeof(T), 0u) {}
    // Has length n at once.
    explicit qzTypedArray(unsigned n) : Elements(sizeof(T), n) {
        this->createElements(this->data, this->used);
    }
    qzTypedArray(const qzTypedArray& other) : Elements(sizeof(T), 0u) { this->assign(other); }
    // Adopts a block of nbytes from malloc that holds constructed elements.
    qzTypedArray(unsigned elemSize, unsigned nbytes, void* block)
        : Elements(elemSize, nbytes, block) {}
    explicit qzTypedArray(qzTypeObj& type) : Elements(type) { this->elemSize = sizeof(T); }
    ~qzTypedArray() override { this->destroy(); }

    // The old elements are destroyed; the capacity becomes the source's length.
    qzTypedArray& operator=(const qzTypedArray& other) {
        this->assign(other);
        return *this;
    }

    const char* className() const override { return "ARRAY"; }

    // qzArray's, without a division for elements of the class's own size.
    unsigned length() const {
        return this->elemSize == sizeof(T) ? this->used / sizeof(T) : qzArray::length();
    }

    // The element; also through a const array, as the elements are not its own
    // bytes.
    T& operator[](unsigned i) const {
        assert(i < this->length());
        return static_cast<T*>(this->data)[i];
    }

    void append(const T& elem) {
        if constexpr (std::is_trivially_copyable_v<T>) {
            const T value = elem; // which may lie in the block that moves
            if (this->used == this->allocated || this->elemSize != sizeof(T)) {
                this->requireElementSize(sizeof(T));
                this->expand();
            }
            std::memcpy(static_cast<char*>(this->data) + this->used, &value, sizeof value);
            this->used += sizeof(T);
        } else {
            qzArray::append(&elem);
        }
    }
    void append(const Derived& other) { qzArray::append(static_cast<const qzArray&>(other)); }
    void insert(const T& elem, unsigned pos) {
        this->requireElementSize(sizeof(T));
        qzArray::insert(&elem, pos);
    }
    void insert(const Derived& other, unsigned pos) {
        qzArray::insert(static_cast<const qzArray&>(other), pos);
    }
    // Index of the first equal element at or after start, or -1.
    int find(const T& elem, unsigned start = 0) const;

    void qsort() { qsort(0, this->length()); }
    void qsort(unsigned start, unsigned count);

    // cut moves the elements out of this array, the others copy them.
    Derived cut(unsigned pos, unsigned count) { return adopt(count, this->raw_cut(pos, count)); }
    Derived extract(unsigned pos, unsigned count) const {
        return adopt(count, this->raw_extract(pos, count));
    }
    Derived head(unsigned count) const { return adopt(count, this->raw_head(count)); }
    Derived tail(unsigned count) const { return adopt(count, this->raw_tail(count)); }

  private:
    Derived adopt(unsigned count, void* block) const {
        return Derived(this->elemSize, count * this->elemSize, block);
    }
    // Whether elements compare as plain bytes: the member, or a class derived
    // from it, may compare in its own way.
    bool comparesBytes() const {
        return std::is_same_v<decltype(&Derived::compareElements),
                              int (qzArray::*)(const void*, const void*) const> &&
               typeid(*this) == typeid(Derived);
    }
};

template <class Derived, class T, class Elements>
int qzTypedArray<Derived, T, Elements>::find(const T& elem, unsigned start) const {
    if (this->elemSize != sizeof(T)) return -1;
    return comparesBytes() ? this->findPlain(&elem, start) : qzArray::find(&elem, start);
}

template <class Derived, class T, class Elements>
void qzTypedArray<Derived, T, Elements>::qsort(unsigned start, unsigned count) {
    if (comparesBytes()) {
        this->qsortPlain(start, count);
    } else {
        qzArray::qsort(start, count);
    }
}

template <class T> void qzObjectElements<T>::createElements(void* p, unsigned nbytes) {
    T* const end = static_cast<T*>(p) + nbytes / sizeof(T);
    for (T* slot = static_cast<T*>(p); slot != end; ++slot)
        new (slot) T();
}

template <class T> void qzObjectElements<T>::destroyElements(void* p, unsigned nbytes) {
    T* const end = static_cast<T*>(p) + nbytes / sizeof(T);
    for (T* slot = static_cast<T*>(p); slot != end; ++slot)
        slot->~T();
}

template <class T>
void qzObjectElements<T>::copyElements(const void* src, void* dst, unsigned nbytes) const {
    const T* from = static_cast<const T*>(src);
    T* to = static_cast<T*>(dst);
    const unsigned n = nbytes / sizeof(T);
    if (src >= dst) {
        for (unsigned i = 0; i < n; ++i)
            new (to + i) T(from[i]);
    } else {
        for (unsigned i = n; i-- > 0;)
            new (to + i) T(from[i]);
    }
}

template <class T> int qzObjectElements<T>::compareElements(const void* a, const void* b) const {
    return compare(*static_cast<const T*>(a), *static_cast<const T*>(b));
}

#endif

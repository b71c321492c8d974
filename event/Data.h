// qzData: a value on its way from an output channel to input channels.
//
// A data object boxes one value, knows its type code, and hands the value to a
// receiver in its native type. Those of the library (qzIntData, qzStrData, ...)
// are members of one pattern, event/TypedData.h; a program derives its own and
// draws a type code for each from qz_nextDataType.
//
// Ownership: a sender makes the object and gives it away with the send. Holders
//     count themselves, starting from 0, and the last release destroys it.
// Cost: the blocks of small ones are recycled, so that a send rarely allocates.
#ifndef QZ_EVENT_DATA_H
#define QZ_EVENT_DATA_H

#include <cassert>
#include <cstddef>

#include "util/Export.h"

class qzInputChannel;

class QZ_EXPORT qzData {
  public:
    explicit qzData(unsigned short type) : refCount(0), type(type) {}
    qzData(const qzData&) = delete;
    qzData& operator=(const qzData&) = delete;

    // slots 1-5
    virtual ~qzData();
    virtual const char* dataName() const = 0;
    // Calls function(object, value). The receiver may do anything, also release
    // this object if someone else holds it.
    virtual void deliverTo(void (*function)(), void* object) = 0;
    // Copies the value to the destination, which has the value's own type.
    // Deliberate: the requested type is ignored. Callers pass whatever they have at
    // hand; types were matched when channels were connected. Pinned by
    // qzData.ValuesArriveInTheirNativeType.
    virtual void getValue(unsigned short type, void* destination) = 0;
    // Bytes that the value takes in this object.
    virtual unsigned getSize() = 0;

    unsigned short getType() const { return type; }
    // Always true: types are matched when channels are connected.
    unsigned char checkTypes(qzInputChannel*) { return 1; }

    void addRef() { ++refCount; }
    void delRef() {
        assert(refCount > 0);
        if (--refCount == 0) delete this;
    }
    unsigned references() const { return refCount; }

    static void* operator new(std::size_t bytes);
    static void operator delete(void* block, std::size_t bytes);

  protected:
    unsigned refCount;
    unsigned short type;
};

static_assert(sizeof(void*) != 4 || sizeof(qzData) == 12, "a send allocates one of these");

#endif

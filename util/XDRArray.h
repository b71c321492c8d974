// qzXDRArray: the pattern of the typed arrays that can be transcribed.
//
// Adds to qzTypedArray the type object, Type, and the transcription: the used
// size in bytes, the element size, and the elements in one call.
//
//     class qzIntArray : public qzXDRArray<qzIntArray, int, qzIntArray_type>
//
// Deliberate: every member names itself "ARRAY" in a stream, where the element
// size tells them apart. A reader creates the class that was registered last
// under that name, qzUnsignedShortArray, and it holds the elements of any other
// by their width. Callers read arrays back without linking to the class that
// wrote them. Pinned by qzXDRArray.ArrayNameResolvesToUnsignedShort and
// qzXDRArray.ElementsOfAnotherSizeComeBackRight.
//
// After reading data of unknown origin, compare elementSize() with what is
// expected before using the elements as T: appending or inserting to an array
// with elements of another size ends the process.
//
// Errors: reading, xdr() is false for sizes that contradict each other or that
// memory cannot hold, and the array can be used and destroyed.
#ifndef QZ_UTIL_XDRARRAY_H
#define QZ_UTIL_XDRARRAY_H

#include "util/TypedArray.h"
#include "xdr/StreamSize.h"
#include "xdr/Transcriber.h"

template <class Derived, class T, qzTypeObj& Type, class Elements = qzArray>
class QZ_EXPORT qzXDRArray : public qzTypedArray<Derived, T, Elements> {
  public:
    using qzTypedArray<Derived, T, Elements>::qzTypedArray;

    unsigned char xdr(qzTranscriber& t) override;
    qzTypeObj& getTypeObj() const override { return Type; }

    static void* newInstance(qzTypeObj& type) { return new Derived(type); }
    static void deleteInstance(void* object) { delete static_cast<Derived*>(object); }
    static unsigned char xdr(void* object, qzTranscriber& t) {
        return static_cast<Derived*>(object)->xdr(t);
    }
};

template <class Derived, class T, qzTypeObj& Type, class Elements>
unsigned char qzXDRArray<Derived, T, Type, Elements>::xdr(qzTranscriber& t) {
    return this->xdrValues(t, sizeof(T), qzStreamSize<T>(),
                           [](qzTranscriber& to, void* values, unsigned n) {
                               return to.xdr(static_cast<T*>(values), n);
                           });
}

#endif

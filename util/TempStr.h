// qzTempStr: what a chain of string concatenations builds.
//
// `a | b | c` makes one of these and appends to it in place; a string takes the
// result. Up to 99 characters stay in the object, so that such a chain costs
// the one allocation of the string that receives it.
//
// Units: bytes; slength counts the terminator, as in qzStr.
// Trusted: as in qzStr. A text may point into the temporary itself.
#ifndef QZ_UTIL_TEMPSTR_H
#define QZ_UTIL_TEMPSTR_H

#include "util/Export.h"
#include "util/Str.h"

class QZ_EXPORT qzTempStr {
  public:
    qzTempStr(const char* a, unsigned lengthA, const char* b, unsigned lengthB);
    // Deliberate: a copy of 99 characters goes to the heap, one character
    // earlier than construction and concat() would send it; the bytes are the
    // same wherever they are. Pinned by qzTempStr.CopyMovesToTheHeapOneEarlier.
    qzTempStr(const qzTempStr& other);
    qzTempStr& operator=(const qzTempStr&) = delete;
    ~qzTempStr();

    // Appends n bytes of s; returns this temporary. Text that has moved to the
    // heap stays there.
    qzTempStr& concat(const char* s, unsigned n);

    unsigned length() const { return slength - 1; }

    char indata[100];
    char* data; // indata, or a block from malloc
    unsigned slength;
};

static_assert(sizeof(void*) != 4 || sizeof(qzTempStr) == 108, "callers keep it on the stack");

// These append to the temporary itself and return it, so that a chain builds
// one. The operand is const only so that a nameless temporary binds to it.
QZ_EXPORT qzTempStr& operator|(const qzTempStr& temp, const qzStr& s);
QZ_EXPORT qzTempStr& operator|(const qzTempStr& temp, const char* s);

#endif

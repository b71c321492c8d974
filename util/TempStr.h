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

#include <cstring>

#include "util/Export.h"
#include "util/Str.h"

class QZ_EXPORT qzTempStr {
  public:
    qzTempStr(const char* a, unsigned lengthA, const char* b, unsigned lengthB)
        : data(indata), slength(lengthA + 1) {
        if (lengthA <= movedInline && lengthB <= movedInline && lengthA + lengthB < sizeof indata) {
            qzMoveText(indata, a, lengthA);
            qzMoveText(indata + lengthA, b, lengthB);
            slength += lengthB;
            indata[length()] = 0;
        } else {
            build(a, lengthA, b, lengthB);
        }
    }
    // Deliberate: a copy of 99 characters goes to the heap, one character
    // earlier than construction and concat() would send it; the bytes are the
    // same wherever they are. Pinned by qzTempStr.CopyMovesToTheHeapOneEarlier.
    qzTempStr(const qzTempStr& other);
    qzTempStr& operator=(const qzTempStr&) = delete;
    ~qzTempStr() {
        if (data != indata) std::free(data);
    }

    // Appends n bytes of s; returns this temporary. Text that has moved to the
    // heap stays there.
    qzTempStr& concat(const char* s, unsigned n) {
        if (data != indata || n > movedInline || slength > sizeof indata - n)
            return concatLong(s, n);
        qzMoveText(indata + length(), s, n);
        slength += n;
        indata[length()] = 0;
        return *this;
    }

    unsigned length() const { return slength - 1; }

    // strlen(s). Text of 4 GB is fatal.
    static unsigned textLength(const char* s) {
        const std::size_t n = std::strlen(s);
        if (n >= 0xffffffffu) tooLong();
        return static_cast<unsigned>(n);
    }

    char indata[100];
    char* data; // indata, or a block from malloc
    unsigned slength;

  private:
    static const unsigned movedInline = 64;
    void build(const char* a, unsigned lengthA, const char* b, unsigned lengthB);
    qzTempStr& concatLong(const char* s, unsigned n);
    [[noreturn]] static void tooLong();
};

static_assert(sizeof(void*) != 4 || sizeof(qzTempStr) == 108, "callers keep it on the stack");

// Concatenation.
inline qzTempStr operator|(const qzStr& a, const qzStr& b) {
    return qzTempStr(a.data, a.length(), b.data, b.length());
}
inline qzTempStr operator|(const qzStr& a, const char* b) {
    return qzTempStr(a.data, a.length(), b, qzTempStr::textLength(b));
}
inline qzTempStr operator|(const char* a, const qzStr& b) {
    return qzTempStr(a, qzTempStr::textLength(a), b.data, b.length());
}

// These append to the temporary itself and return it, so that a chain builds
// one. The operand is const only so that a nameless temporary binds to it.
inline qzTempStr& operator|(const qzTempStr& temp, const qzStr& s) {
    return const_cast<qzTempStr&>(temp).concat(s.data, s.length());
}
inline qzTempStr& operator|(const qzTempStr& temp, const char* s) {
    return const_cast<qzTempStr&>(temp).concat(s, qzTempStr::textLength(s));
}

#endif

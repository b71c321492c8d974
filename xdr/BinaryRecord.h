// qzBinaryRecord: the records of the binary object format, as numbers.
//
// docs/binary-format.md has the whole format. The bodies of primitive arrays have
// their qzBinaryOTTag for their kind.
#ifndef QZ_XDR_BINARYRECORD_H
#define QZ_XDR_BINARYRECORD_H

#include "xdr/BinaryOTTag.h"

namespace qzBinaryRecord {

enum Kind : unsigned {
    Continuation = 0,
    NullPointer = 1,
    TypeDefinition = 2,
    NewArray = 3,
    KnownArray = 4,
    FirstArrayBody = qzBOT_Chars,
    LastArrayBody = qzBOT_Doubles,
    ObjectBody = 10,
    NewObject = 11,
    KnownObject = 12,
    NewPart = 13,
    KnownPart = 14,
    LastUsedKind = KnownPart
};

const unsigned kindBits = 63; // of the tag; the others tell how the length is stored

const unsigned maxData = 512;   // bytes of a record
const unsigned maxName = 65536; // bytes with the NUL; no name is anywhere near

inline bool isArrayBody(unsigned kind) { return kind >= FirstArrayBody && kind <= LastArrayBody; }
inline bool isBody(unsigned kind) { return isArrayBody(kind) || kind == ObjectBody; }
// Pointers to objects and to arrays met before, and parts: behind their field there
// may be a second one, which is 0.
inline bool isReference(unsigned kind) {
    return kind == KnownArray || (kind >= NewObject && kind <= KnownPart);
}

// What an element of an array body takes in a stream, bytes.
inline unsigned elementSize(unsigned tag) {
    switch (tag) {
    case qzBOT_Shorts:
        return 2;
    case qzBOT_Longs:
    case qzBOT_Floats:
        return 4;
    case qzBOT_Doubles:
        return 8;
    default:
        return 1;
    }
}

} // namespace qzBinaryRecord

#endif

// qzBinaryWriterItem: a body that a binary writer has yet to put out.
#ifndef QZ_XDR_BINARYWRITERITEM_H
#define QZ_XDR_BINARYWRITERITEM_H

#include "xdr/BinaryOTTag.h"

class qzTypeObj;

struct qzBinaryWriterItem {
    enum ItemKind { Object = 0, PrimitiveArray = 1 };

    ItemKind kind;
    void* address;
    qzTypeObj* type;     // of an object
    unsigned length;     // of an array in the stream, bytes
    qzBinaryOTTag tag;   // of an array
    unsigned memorySize; // of an array's element: longs may be wider than in a stream
    unsigned long* id;   // in the object table
};

#endif

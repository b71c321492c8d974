// qzBinaryWriterItem: an object or array whose body is still to be written.
#ifndef QZ_XDR_BINARYWRITERITEM_H
#define QZ_XDR_BINARYWRITERITEM_H

class qzTypeObj;

struct qzBinaryWriterItem {
    enum ItemKind : unsigned char { Object = 0, PrimitiveArray = 1 };

    qzBinaryWriterItem(void* object, unsigned id, qzTypeObj& type)
        : address(object), id(id), type(&type), kind(Object), tag(0), memorySize(0) {}
    qzBinaryWriterItem(void* array, unsigned id, unsigned length, unsigned tag, unsigned memorySize)
        : address(array), id(id), length(length), kind(PrimitiveArray),
          tag(static_cast<unsigned char>(tag)), memorySize(static_cast<unsigned char>(memorySize)) {
    }

    void* address;
    unsigned id;
    union {
        qzTypeObj* type; // of an object
        unsigned length; // of an array in the stream, bytes
    };
    ItemKind kind;
    unsigned char tag;        // qzBinaryOTTag of an array
    unsigned char memorySize; // of an array's element: longs may be wider than in a stream
};

static_assert(sizeof(void*) != 4 || sizeof(qzBinaryWriterItem) == 16,
              "there is one for each string that waits");

#endif

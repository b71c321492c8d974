// qzBinaryReaderItem: a pointer member that waits for what it points to.
#ifndef QZ_XDR_BINARYREADERITEM_H
#define QZ_XDR_BINARYREADERITEM_H

struct qzBinaryReaderItem {
    // What may be stored in the member.
    enum Wanted : unsigned char {
        AnObject, // or a part of one
        AnArray,
        AStringsText // of a qzStr, which will free it
    };

    void* member;   // address of the pointer member to fill in
    unsigned id;    // of the record that it must receive
    unsigned bytes; // in memory, that an array must have at least
    bool wide;      // array of longs that are wider in memory than in a stream
    Wanted wanted;
};

#endif

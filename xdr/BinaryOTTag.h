// qzBinaryOTTag: what a primitive array holds; also the kind of its record.
#ifndef QZ_XDR_BINARYOTTAG_H
#define QZ_XDR_BINARYOTTAG_H

enum qzBinaryOTTag {
    qzBOT_Chars = 5,
    qzBOT_Shorts = 6,
    qzBOT_Longs = 7, // ints, too
    qzBOT_Floats = 8,
    qzBOT_Doubles = 9
};

#endif

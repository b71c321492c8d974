// qzBoundingBox: an axis-parallel rectangle of whole numbers.
//
// A box covers [x, x + width) by [y, y + height); an extent of 0 is empty on
// its axis.
#ifndef QZ_UTIL_BOUNDINGBOX_H
#define QZ_UTIL_BOUNDINGBOX_H

#include "util/Export.h"

class QZ_EXPORT qzBoundingBox {
  public:
    qzBoundingBox() : x(0), y(0), width(0), height(0) {}
    qzBoundingBox(int x, int y, int width, int height) : x(x), y(y), width(width), height(height) {}

    // What both boxes cover. An axis without overlap (boxes that only touch
    // included) has start 0 and extent 0; the other axis keeps its overlap.
    qzBoundingBox intersect(const qzBoundingBox& other) const;

    // The smallest box around both; a box that is empty on an axis has no say
    // there, and where both are, the argument's start and extent stand.
    //
    // Deliberate: the far edge is computed in 16 bits and sign-extended, as
    // coordinates of the drawing systems that callers feed with it are. Pinned
    // by qzBoundingBox.BoundNarrowsFarEdgeToSixteenBits.
    qzBoundingBox bound(const qzBoundingBox& other) const;

    int x;
    int y;
    int width;
    int height;
};

static_assert(sizeof(qzBoundingBox) == 16, "four 32-bit fields");

#endif

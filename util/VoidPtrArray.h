// qzVoidPtrArray: an array of untyped pointers. See util/TypedArray.h.
//
// New slots are null. What the pointers point at is not owned. It cannot be transcribed.
#ifndef QZ_UTIL_VOIDPTRARRAY_H
#define QZ_UTIL_VOIDPTRARRAY_H

#include "util/TypedArray.h"

class QZ_EXPORT qzVoidPtrArray : public qzTypedArray<qzVoidPtrArray, void*, qzPointerElements> {
  public:
    using qzTypedArray::qzTypedArray;
    ~qzVoidPtrArray() override;
};

extern template class qzTypedArray<qzVoidPtrArray, void*, qzPointerElements>;

#endif

// qzUnsignedLongArray: an array of unsigned longs. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_UNSIGNEDLONGARRAY_H
#define QZ_UTIL_UNSIGNEDLONGARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzUnsignedLongArray_type;

class QZ_EXPORT qzUnsignedLongArray
    : public qzXDRArray<qzUnsignedLongArray, unsigned long, qzUnsignedLongArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzUnsignedLongArray() override;
};

extern template class qzTypedArray<qzUnsignedLongArray, unsigned long>;
extern template class qzXDRArray<qzUnsignedLongArray, unsigned long, qzUnsignedLongArray_type>;

#endif

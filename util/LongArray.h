// qzLongArray: an array of longs. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_LONGARRAY_H
#define QZ_UTIL_LONGARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzLongArray_type;

class QZ_EXPORT qzLongArray : public qzXDRArray<qzLongArray, long, qzLongArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzLongArray() override;
};

extern template class qzTypedArray<qzLongArray, long>;
extern template class qzXDRArray<qzLongArray, long, qzLongArray_type>;

#endif

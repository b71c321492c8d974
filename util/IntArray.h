// qzIntArray: an array of ints. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_INTARRAY_H
#define QZ_UTIL_INTARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzIntArray_type;

class QZ_EXPORT qzIntArray : public qzXDRArray<qzIntArray, int, qzIntArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzIntArray() override;
};

extern template class qzTypedArray<qzIntArray, int>;
extern template class qzXDRArray<qzIntArray, int, qzIntArray_type>;

#endif

// qzDoubleArray: an array of doubles. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_DOUBLEARRAY_H
#define QZ_UTIL_DOUBLEARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzDoubleArray_type;

class QZ_EXPORT qzDoubleArray : public qzXDRArray<qzDoubleArray, double, qzDoubleArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzDoubleArray() override;
};

extern template class qzTypedArray<qzDoubleArray, double>;
extern template class qzXDRArray<qzDoubleArray, double, qzDoubleArray_type>;

#endif

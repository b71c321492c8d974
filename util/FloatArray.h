// qzFloatArray: an array of floats. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_FLOATARRAY_H
#define QZ_UTIL_FLOATARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzFloatArray_type;

class QZ_EXPORT qzFloatArray : public qzXDRArray<qzFloatArray, float, qzFloatArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzFloatArray() override;
};

extern template class qzTypedArray<qzFloatArray, float>;
extern template class qzXDRArray<qzFloatArray, float, qzFloatArray_type>;

#endif

// qzBoolArray: an array of truth values. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_BOOLARRAY_H
#define QZ_UTIL_BOOLARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzBoolArray_type;

class QZ_EXPORT qzBoolArray : public qzXDRArray<qzBoolArray, unsigned char, qzBoolArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzBoolArray() override;
};

extern template class qzTypedArray<qzBoolArray, unsigned char>;
extern template class qzXDRArray<qzBoolArray, unsigned char, qzBoolArray_type>;

#endif

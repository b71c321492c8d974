// qzShortArray: an array of shorts. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_SHORTARRAY_H
#define QZ_UTIL_SHORTARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzShortArray_type;

class QZ_EXPORT qzShortArray : public qzXDRArray<qzShortArray, short, qzShortArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzShortArray() override;
};

extern template class qzTypedArray<qzShortArray, short>;
extern template class qzXDRArray<qzShortArray, short, qzShortArray_type>;

#endif

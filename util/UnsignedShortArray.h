// qzUnsignedShortArray: an array of unsigned shorts. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_UNSIGNEDSHORTARRAY_H
#define QZ_UTIL_UNSIGNEDSHORTARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzUnsignedShortArray_type;

class QZ_EXPORT qzUnsignedShortArray
    : public qzXDRArray<qzUnsignedShortArray, unsigned short, qzUnsignedShortArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzUnsignedShortArray() override;
};

extern template class qzTypedArray<qzUnsignedShortArray, unsigned short>;
extern template class qzXDRArray<qzUnsignedShortArray, unsigned short, qzUnsignedShortArray_type>;

#endif

// qzUnsignedCharArray: an array of unsigned characters. See util/TypedArray.h and util/XDRArray.h.
#ifndef QZ_UTIL_UNSIGNEDCHARARRAY_H
#define QZ_UTIL_UNSIGNEDCHARARRAY_H

#include "util/XDRArray.h"

extern QZ_EXPORT qzTypeObj qzUnsignedCharArray_type;

class QZ_EXPORT qzUnsignedCharArray
    : public qzXDRArray<qzUnsignedCharArray, unsigned char, qzUnsignedCharArray_type> {
  public:
    using qzXDRArray::qzXDRArray;
    ~qzUnsignedCharArray() override;
};

extern template class qzTypedArray<qzUnsignedCharArray, unsigned char>;
extern template class qzXDRArray<qzUnsignedCharArray, unsigned char, qzUnsignedCharArray_type>;

#endif
